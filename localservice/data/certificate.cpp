#include "localservice/data/certificate.h"

#include "localservice/base/secrets.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <cstdio>
#include <ctime>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace localservice {

namespace {

template <auto release>
struct Release
{
    template <typename T>
    void operator()(T *pointer) const
    {
        release(pointer);
    }
};

using Key = std::unique_ptr<EVP_PKEY, Release<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Release<X509_free>>;
using Extension = std::unique_ptr<X509_EXTENSION, Release<X509_EXTENSION_free>>;
using File = std::unique_ptr<std::FILE, Release<std::fclose>>;

constexpr long secondsPerDay = 24L * 3600;
constexpr long validity = 800 * secondsPerDay; // clients refuse more than 825 days

void require(bool succeeded)
{
    if (!succeeded)
        throw std::runtime_error("OpenSSL cannot make the certificates");
}

Key newKey()
{
    Key key(EVP_EC_gen("P-256"));
    require(key != nullptr);
    return key;
}

using Extensions = std::vector<std::pair<int, const char *>>;

Certificate signedCertificate(EVP_PKEY *key, const char *commonName, const Extensions &extensions,
                              EVP_PKEY *issuerKey, X509 *issuer = nullptr)
{
    Certificate certificate(X509_new());
    X509 *const self = certificate.get();
    require(self && X509_set_version(self, X509_VERSION_3) == 1);
    require(ASN1_INTEGER_set_int64(X509_get_serialNumber(self), randomToken()) == 1);
    // A clock that is set back by less than an hour leaves it valid.
    require(X509_gmtime_adj(X509_getm_notBefore(self), -3600)
            && X509_gmtime_adj(X509_getm_notAfter(self), validity));
    X509_NAME *const name = X509_get_subject_name(self);
    const auto *const text = reinterpret_cast<const unsigned char *>(commonName);
    require(X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, text, -1, -1, 0) == 1);
    issuer = issuer ? issuer : self; // an authority is its own
    require(X509_set_issuer_name(self, X509_get_subject_name(issuer)) == 1
            && X509_set_pubkey(self, key) == 1);
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, self, nullptr, nullptr, 0);
    for (const auto &[id, value] : extensions) {
        const Extension extension(X509V3_EXT_conf_nid(nullptr, &context, id, value));
        require(extension && X509_add_ext(self, extension.get(), -1) == 1);
    }
    require(X509_sign(self, issuerKey, EVP_sha256()) > 0);
    return certificate;
}

template <typename Write>
void writeFile(const std::filesystem::path &path, Write write)
{
    const File file(std::fopen(path.c_str(), "w"));
    if (!file || write(file.get()) != 1 || std::fflush(file.get()) != 0)
        throw std::runtime_error("cannot write \"" + path.string() + "\"");
}

Certificate readCertificate(const std::filesystem::path &path)
{
    const File file(std::fopen(path.c_str(), "r"));
    return Certificate(file ? PEM_read_X509(file.get(), nullptr, nullptr, nullptr) : nullptr);
}

Key readKey(const std::filesystem::path &path)
{
    const File file(std::fopen(path.c_str(), "r"));
    return Key(file ? PEM_read_PrivateKey(file.get(), nullptr, nullptr, nullptr) : nullptr);
}

bool isValidTomorrow(const X509 *certificate)
{
    std::time_t tomorrow = std::time(nullptr) + secondsPerDay;
    return X509_cmp_time(X509_get0_notAfter(certificate), &tomorrow) > 0;
}

bool areUsable(const TlsFiles &files)
{
    const Certificate authority = readCertificate(files.authority);
    const Certificate server = readCertificate(files.certificate);
    const Key key = readKey(files.key);
    // A clock that is wrong now would cost the clients an authority that they trust, be the other
    // files usable or not.
    if (authority && X509_cmp_current_time(X509_get0_notBefore(authority.get())) > 0)
        throw std::runtime_error("\"" + files.authority.string()
                                 + "\" is not valid yet: set the clock right, or remove the file "
                                   "and trust the new authority");
    return authority && server && key && isValidTomorrow(authority.get())
           && isValidTomorrow(server.get()) && X509_check_private_key(server.get(), key.get()) == 1
           && X509_verify(server.get(), X509_get0_pubkey(authority.get())) == 1;
}

// The authority signs the server's certificate only: its own key is never written.
void makeNew(const TlsFiles &files)
{
    const Key authorityKey = newKey();
    const Certificate authority =
        signedCertificate(authorityKey.get(), "Local speech service authority",
                          {{NID_basic_constraints, "critical,CA:TRUE,pathlen:0"},
                           {NID_key_usage, "critical,keyCertSign,cRLSign"},
                           {NID_subject_key_identifier, "hash"},
                           {NID_authority_key_identifier, "keyid:always"}},
                          authorityKey.get());
    const Key key = newKey();
    const Certificate server =
        signedCertificate(key.get(), "localhost",
                          {{NID_basic_constraints, "critical,CA:FALSE"},
                           {NID_key_usage, "critical,digitalSignature"},
                           {NID_ext_key_usage, "serverAuth"},
                           {NID_subject_key_identifier, "hash"},
                           {NID_authority_key_identifier, "keyid:always"},
                           {NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1"}},
                          authorityKey.get(), authority.get());
    writeFile(files.key, [&](std::FILE *file) {
        return PEM_write_PrivateKey(file, key.get(), nullptr, nullptr, 0, nullptr, nullptr);
    });
    writeFile(files.certificate,
              [&](std::FILE *file) { return PEM_write_X509(file, server.get()); });
    writeFile(files.authority,
              [&](std::FILE *file) { return PEM_write_X509(file, authority.get()); });
}

} // namespace

TlsFiles prepareTlsFiles(const std::filesystem::path &folder)
{
    std::filesystem::create_directories(folder);
    TlsFiles files{folder / "authority.pem", folder / "server.pem", folder / "server-key.pem"};
    if (!areUsable(files))
        makeNew(files);
    return files;
}

} // namespace localservice
