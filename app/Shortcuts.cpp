#include "app/Shortcuts.h"

#include <QKeyEvent>
#include <QShortcut>
#include <QWidget>

namespace quarrynet {

Shortcuts::Shortcuts(QWidget& window, const Commands& commands) : QObject(&window), window_(window)
{
    for (int i = 0; i < kTabs; ++i) {
        const auto digit = Qt::Key(Qt::Key_1 + i);
        for (const Qt::KeyboardModifier modifier : {Qt::ControlModifier, Qt::AltModifier})
            add(modifier | digit, Repeat::Never, [show = commands.showTab, i] { show(i); });
    }
    add(Qt::CTRL | Qt::Key_Tab, Repeat::WhileHeld, [step = commands.stepTab] { step(1); });
    add(Qt::CTRL | Qt::SHIFT | Qt::Key_Tab, Repeat::WhileHeld, [step = commands.stepTab] { step(-1); });
    add(Qt::CTRL | Qt::Key_L, Repeat::Never, commands.goToField);
    add(Qt::Key_F5, Repeat::Never, commands.repeatSearch);
    add(Qt::Key_F1, Repeat::Never, commands.openManual);
    add(Qt::CTRL | Qt::Key_Q, Repeat::Never, commands.quit);
    window.installEventFilter(this);
}

void Shortcuts::add(const QKeySequence& key, Repeat repeat, const std::function<void()>& command)
{
    auto* shortcut = new QShortcut(key, &window_);
    shortcut->setAutoRepeat(repeat == Repeat::WhileHeld);
    connect(shortcut, &QShortcut::activated, this, command);
}

bool Shortcuts::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        // Alt with digits of the keypad types a character by its number on Windows.
        const auto& key = *static_cast<QKeyEvent*>(event);
        const Qt::KeyboardModifiers both = Qt::AltModifier | Qt::KeypadModifier;
        if ((key.modifiers() & both) == both && key.key() >= Qt::Key_0 && key.key() <= Qt::Key_9) {
            event->accept();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace quarrynet
