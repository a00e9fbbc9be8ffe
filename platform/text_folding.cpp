#include "platform/text_folding.h"

namespace quarrynet {

namespace {

constexpr int kLongestRun = 30; // combining characters; UAX #15, section 13
constexpr QChar kGraphemeJoiner(0x034F);

// The toolkit takes quadratic time to normalise: it sorts marks by exchanging neighbours, and moves the rest of the
// text for each letter that it composes. So texts are normalised in pieces of about this many UTF-16 units.
constexpr qsizetype kPiece = 128;

// Returns whether `character` may become one letter with the one before it, or change its place with it. Besides marks,
// these are the vowels and last consonants of Korean syllables and a vowel of Kirat Rai.
bool isCombining(char32_t character)
{
    constexpr char32_t kFirst = 0x0300;
    return character >= kFirst &&
           (QChar::isMark(character) || (character >= 0x1160 && character <= 0x11FF) || character == 0x16D67);
}

} // namespace

QString folded(const QString& text)
{
    QString folding;
    folding.reserve(text.size());
    qsizetype start = 0; // of the current piece
    const auto endPiece = [&](qsizetype end) {
        folding += text.mid(start, end - start).normalized(QString::NormalizationForm_C).toCaseFolded();
        start = end;
    };
    int run = 0;
    qsizetype size = 1;
    for (qsizetype at = 0; at < text.size(); at += size) {
        char32_t character = text[at].unicode();
        size = 1;
        if (text[at].isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate()) {
            character = QChar::surrogateToUcs4(text[at], text[at + 1]);
            size = 2;
        }
        if (!isCombining(character)) {
            run = 0;
            if (at - start >= kPiece)
                endPiece(at);
        } else if (run < kLongestRun) {
            ++run;
        } else {
            endPiece(at);
            folding += kGraphemeJoiner;
            run = 1;
        }
    }
    endPiece(text.size());
    return folding;
}

} // namespace quarrynet
