#include "certificates.h"

#include <memory>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>
#include <stdexcept>

namespace quarrynet::certificates {

namespace {

template <auto Free>
struct Deleter
{
    template <class Object>
    void operator()(Object* object) const
    {
        Free(object);
    }
};

using Key = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Deleter<X509_free>>;
using Bio = std::unique_ptr<BIO, Deleter<BIO_free_all>>;
using Extension = std::unique_ptr<X509_EXTENSION, Deleter<X509_EXTENSION_free>>;

template <class Result>
Result checked(Result result)
{
    if (!result)
        throw std::runtime_error("the certificate library failed");
    return result;
}

Bio reader(const std::string& pem)
{
    return Bio(checked(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size()))));
}

std::string contents(const Bio& bio)
{
    char* data = nullptr;
    const long length = BIO_get_mem_data(bio.get(), &data);
    return {data, static_cast<std::size_t>(length)};
}

void extend(X509* certificate, X509* issuer, int kind, const std::string& value)
{
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    const Extension extension(checked(X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str())));
    checked(X509_add_ext(certificate, extension.get(), -1));
}

} // namespace

Issued issue(const Subject& subject, const Issued* issuer)
{
    const Key key(checked(EVP_EC_gen("P-256")));
    const Certificate certificate(checked(X509_new()));
    X509* made = certificate.get();
    constexpr long kVersion3 = 2;
    checked(X509_set_version(made, kVersion3));
    std::uint64_t serial = 0;
    checked(RAND_bytes(reinterpret_cast<unsigned char*>(&serial), sizeof serial) == 1);
    checked(ASN1_INTEGER_set_uint64(X509_get_serialNumber(made), serial >> 1));
    checked(
        X509_gmtime_adj(X509_getm_notBefore(made), static_cast<long>(std::chrono::seconds(subject.begins).count())));
    checked(X509_gmtime_adj(X509_getm_notAfter(made), static_cast<long>(std::chrono::seconds(subject.ends).count())));
    checked(X509_set_pubkey(made, key.get()));
    X509_NAME* name = X509_get_subject_name(made);
    checked(X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8,
                                       reinterpret_cast<const unsigned char*>(subject.commonName.c_str()), -1, -1, 0));

    Certificate issuersOwn;
    Key issuersKey;
    if (issuer) {
        issuersOwn.reset(checked(PEM_read_bio_X509(reader(issuer->certificate).get(), nullptr, nullptr, nullptr)));
        issuersKey.reset(checked(PEM_read_bio_PrivateKey(reader(issuer->key).get(), nullptr, nullptr, nullptr)));
    }
    X509* signer = issuer ? issuersOwn.get() : made;
    checked(X509_set_issuer_name(made, X509_get_subject_name(signer)));
    extend(made, signer, NID_basic_constraints, subject.authority ? "critical,CA:TRUE" : "critical,CA:FALSE");
    extend(made, signer, NID_key_usage, subject.authority ? "critical,keyCertSign" : "critical,digitalSignature");
    extend(made, signer, NID_subject_key_identifier, "hash");
    std::string names;
    for (const std::string& alternative : subject.alternativeNames)
        names += (names.empty() ? "" : ",") + alternative;
    if (!names.empty())
        extend(made, signer, NID_subject_alt_name, names);
    checked(X509_sign(made, issuer ? issuersKey.get() : key.get(), EVP_sha256()));

    const Bio certificateText(checked(BIO_new(BIO_s_mem())));
    checked(PEM_write_bio_X509(certificateText.get(), made));
    const Bio keyText(checked(BIO_new(BIO_s_mem())));
    checked(PEM_write_bio_PrivateKey(keyText.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr));
    return {contents(certificateText), contents(keyText)};
}

} // namespace quarrynet::certificates
