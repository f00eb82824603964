#pragma once

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <memory>
#include <string>

namespace DemoService {

// A certificate of the service's own, signed by itself and made anew at every start; clients do not verify it.
struct Certificate
{
    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key{nullptr, EVP_PKEY_free};
    std::unique_ptr<X509, decltype(&X509_free)> certificate{nullptr, X509_free};
};

// Throws std::runtime_error when OpenSSL refuses.
[[nodiscard]] Certificate makeCertificate(const std::string& commonName);

} // namespace DemoService
