#include "Services/Cleanup/WorktreeFingerprint.h"

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <stdexcept>

namespace cairnfield {

namespace {

/// One SHA-256 over everything that is added.
class Digest {
public:
    Digest() : context_(EVP_MD_CTX_new(), EVP_MD_CTX_free) {
        if (!context_) throw std::bad_alloc();
        check(EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr));
    }

    Digest& add(std::string_view bytes) {
        check(EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size()));
        return *this;
    }
    Digest& addZero() { return add(std::string_view("\0", 1)); }

    std::string hexadecimal() {
        std::array<unsigned char, EVP_MAX_MD_SIZE> bytes{};
        unsigned length = 0;
        check(EVP_DigestFinal_ex(context_.get(), bytes.data(), &length));
        constexpr std::string_view digits = "0123456789abcdef";
        std::string text;
        for (const unsigned char byte :
             std::string_view(reinterpret_cast<const char*>(bytes.data()), length)) {
            text += digits[byte >> 4U];
            text += digits[byte & 0x0FU];
        }
        return text;
    }

private:
    static void check(int result) {
        if (result != 1) throw std::runtime_error("SHA-256 is not available");
    }

    const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> context_;
};

}  // namespace

std::string WorktreeFingerprint::statusDigest(std::string_view output) {
    return Digest().add(output).hexadecimal();
}

WorktreeFingerprint WorktreeFingerprint::make(const FilePath& repositoryRoot, const FilePath& worktreePath,
                                              const std::optional<std::string>& headSHA,
                                              const std::optional<std::string>& branch,
                                              std::string_view statusDigest,
                                              std::vector<std::string> ignoredSummary) {
    Digest digest;
    digest.add(repositoryRoot.standardized().bytes()).addZero();
    digest.add(worktreePath.standardized().bytes()).addZero();
    digest.add(headSHA.value_or("")).addZero();
    digest.add(branch.value_or("")).addZero();
    digest.add(statusDigest).addZero();
    std::ranges::sort(ignoredSummary);
    for (const std::string& name : ignoredSummary) digest.add(name);
    return {digest.hexadecimal()};
}

}  // namespace cairnfield
