#include "demo-service/Certificate.h"

#include <openssl/ec.h>

#include <stdexcept>

namespace DemoService {

Certificate makeCertificate(const std::string& commonName)
{
    constexpr long lifetimeInSeconds = 30L * 24 * 60 * 60;
    Certificate made;
    made.key.reset(EVP_EC_gen("P-256"));
    made.certificate.reset(X509_new());
    X509* certificate = made.certificate.get();
    if (!made.key || certificate == nullptr)
        throw std::runtime_error("cannot make a key for the certificate");
    X509_set_version(certificate, 2);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate), -60);
    X509_gmtime_adj(X509_getm_notAfter(certificate), lifetimeInSeconds);
    X509_set_pubkey(certificate, made.key.get());
    X509_NAME* name = X509_get_subject_name(certificate);
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8, reinterpret_cast<const unsigned char*>(commonName.c_str()),
                               -1, -1, 0);
    X509_set_issuer_name(certificate, name);
    if (X509_sign(certificate, made.key.get(), EVP_sha256()) == 0)
        throw std::runtime_error("cannot sign the certificate");
    return made;
}

} // namespace DemoService
