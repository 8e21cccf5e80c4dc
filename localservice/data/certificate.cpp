#include "localservice/data/certificate.h"

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <unistd.h>

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
using Bio = std::unique_ptr<BIO, Release<BIO_free_all>>;
using Number = std::unique_ptr<BIGNUM, Release<BN_free>>;

constexpr long secondsPerDay = 24L * 3600;
constexpr long validity = 800 * secondsPerDay; // clients refuse more than 825 days
constexpr int serialBits = 127;

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

void setRandomSerial(X509 *certificate)
{
    const Number serial(BN_new());
    require(serial && BN_rand(serial.get(), serialBits, BN_RAND_TOP_ONE, BN_RAND_BOTTOM_ANY) == 1);
    require(BN_to_ASN1_INTEGER(serial.get(), X509_get_serialNumber(certificate)) != nullptr);
}

void addExtension(X509 *certificate, X509 *issuer, int id, const char *value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    const Extension extension(X509V3_EXT_conf_nid(nullptr, &context, id, value));
    require(extension && X509_add_ext(certificate, extension.get(), -1) == 1);
}

Certificate unsignedCertificate(EVP_PKEY *key, const char *commonName)
{
    Certificate certificate(X509_new());
    require(certificate && X509_set_version(certificate.get(), X509_VERSION_3) == 1);
    setRandomSerial(certificate.get());
    // A clock that is set back a little must not make a new certificate invalid.
    require(X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -3600)
            && X509_gmtime_adj(X509_getm_notAfter(certificate.get()), validity));
    require(X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate.get()), "CN", MBSTRING_ASC,
                                       reinterpret_cast<const unsigned char *>(commonName), -1, -1,
                                       0)
            == 1);
    require(X509_set_pubkey(certificate.get(), key) == 1);
    return certificate;
}

Certificate newAuthority(EVP_PKEY *key)
{
    Certificate authority = unsignedCertificate(key, "Local speech service authority");
    X509 *const self = authority.get();
    require(X509_set_issuer_name(self, X509_get_subject_name(self)) == 1);
    addExtension(self, self, NID_basic_constraints, "critical,CA:TRUE,pathlen:0");
    addExtension(self, self, NID_key_usage, "critical,keyCertSign,cRLSign");
    addExtension(self, self, NID_subject_key_identifier, "hash");
    addExtension(self, self, NID_authority_key_identifier, "keyid:always");
    require(X509_sign(self, key, EVP_sha256()) > 0);
    return authority;
}

Certificate newServerCertificate(EVP_PKEY *key, X509 *authority, EVP_PKEY *authorityKey)
{
    Certificate server = unsignedCertificate(key, "localhost");
    require(X509_set_issuer_name(server.get(), X509_get_subject_name(authority)) == 1);
    addExtension(server.get(), authority, NID_basic_constraints, "critical,CA:FALSE");
    addExtension(server.get(), authority, NID_key_usage, "critical,digitalSignature");
    addExtension(server.get(), authority, NID_ext_key_usage, "serverAuth");
    addExtension(server.get(), authority, NID_subject_key_identifier, "hash");
    addExtension(server.get(), authority, NID_authority_key_identifier, "keyid:always");
    addExtension(server.get(), authority, NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1");
    require(X509_sign(server.get(), authorityKey, EVP_sha256()) > 0);
    return server;
}

std::string contentsOf(BIO *memory)
{
    char *bytes = nullptr;
    const long size = BIO_get_mem_data(memory, &bytes);
    return {bytes, static_cast<std::size_t>(size)};
}

std::string pemOf(X509 *certificate)
{
    const Bio bio(BIO_new(BIO_s_mem()));
    require(bio && PEM_write_bio_X509(bio.get(), certificate) == 1);
    return contentsOf(bio.get());
}

std::string pemOf(EVP_PKEY *key)
{
    const Bio bio(BIO_new(BIO_s_mem()));
    require(bio
            && PEM_write_bio_PrivateKey(bio.get(), key, nullptr, nullptr, 0, nullptr, nullptr)
                   == 1);
    return contentsOf(bio.get());
}

// Under another name first: a reader sees the old file or the new one, never a part of it.
void replaceFile(const std::filesystem::path &path, const std::string &bytes, mode_t mode)
{
    const std::filesystem::path temporary = path.string() + ".new";
    std::filesystem::remove(temporary);
    const int file = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    const bool written =
        file >= 0
        && ::write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
    const bool closed = file >= 0 && ::close(file) == 0;
    if (!written || !closed)
        throw std::runtime_error("cannot write \"" + temporary.string() + "\"");
    std::filesystem::rename(temporary, path);
}

Certificate readCertificate(const std::filesystem::path &path)
{
    const Bio bio(BIO_new_file(path.c_str(), "r"));
    return Certificate(bio ? PEM_read_bio_X509(bio.get(), nullptr, nullptr, nullptr) : nullptr);
}

Key readKey(const std::filesystem::path &path)
{
    const Bio bio(BIO_new_file(path.c_str(), "r"));
    return Key(bio ? PEM_read_bio_PrivateKey(bio.get(), nullptr, nullptr, nullptr) : nullptr);
}

bool isValidTomorrow(const X509 *certificate)
{
    std::time_t tomorrow = std::time(nullptr) + secondsPerDay;
    return X509_cmp_time(X509_get0_notAfter(certificate), &tomorrow) > 0;
}

// A clock that is wrong now would cost the clients an authority that they trust.
void requireThatItHasBegun(const X509 *certificate, const std::filesystem::path &path)
{
    if (X509_cmp_current_time(X509_get0_notBefore(certificate)) > 0)
        throw std::runtime_error("\"" + path.string()
                                 + "\" is not valid yet: set the clock right, or remove the file "
                                   "and trust the new authority");
}

bool areUsable(const TlsFiles &files)
{
    const Certificate authority = readCertificate(files.authority);
    const Certificate server = readCertificate(files.certificate);
    const Key key = readKey(files.key);
    if (!authority || !server || !key)
        return false;
    requireThatItHasBegun(authority.get(), files.authority);
    requireThatItHasBegun(server.get(), files.certificate);
    return isValidTomorrow(authority.get()) && isValidTomorrow(server.get())
           && X509_check_private_key(server.get(), key.get()) == 1
           && X509_verify(server.get(), X509_get0_pubkey(authority.get())) == 1;
}

// The authority signs this one certificate; its own key is gone when this returns.
void makeNew(const TlsFiles &files)
{
    const Key authorityKey = newKey();
    const Certificate authority = newAuthority(authorityKey.get());
    const Key serverKey = newKey();
    const Certificate server =
        newServerCertificate(serverKey.get(), authority.get(), authorityKey.get());
    replaceFile(files.key, pemOf(serverKey.get()), 0600);
    replaceFile(files.certificate, pemOf(server.get()), 0644);
    replaceFile(files.authority, pemOf(authority.get()), 0644);
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
