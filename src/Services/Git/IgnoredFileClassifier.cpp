#include "Services/Git/IgnoredFileClassifier.h"

#include "Shared/Text/Text.h"

#include <algorithm>
#include <array>
#include <unordered_set>

namespace cairnfield::IgnoredFileClassifier {

namespace {

using namespace std::string_view_literals;

// "vendor/bundle" can match no single component; it stands here for whoever looks for the name.
constexpr std::array rebuildableNames{
    "node_modules"sv,  ".next"sv,       ".nuxt"sv,       ".turbo"sv,       ".parcel-cache"sv, ".svelte-kit"sv,
    "dist"sv,          "build"sv,       "out"sv,         "target"sv,       ".output"sv,       ".cache"sv,
    ".gradle"sv,       "DerivedData"sv, ".build"sv,      "Pods"sv,         "vendor/bundle"sv, "__pycache__"sv,
    ".pytest_cache"sv, ".mypy_cache"sv, ".ruff_cache"sv, ".venv"sv,        "venv"sv,          "coverage"sv,
    ".nyc_output"sv,   ".angular"sv,    ".vite"sv,       ".eslintcache"sv,
};
static_assert(rebuildableNames.size() == 28);

// In lower case, since they are compared with a lower-cased name.
constexpr std::array sensitiveExactNames{
    ".env"sv,
    ".npmrc"sv,
    ".pypirc"sv,
    ".netrc"sv,
    "credentials"sv,
    "credentials.json"sv,
    "id_rsa"sv,
    "id_ed25519"sv,
    "id_ecdsa"sv,
    ".masterkey"sv,
    "secrets.json"sv,
    "googleservice-info.plist"sv,
    "google-services.json"sv,
};
static_assert(sensitiveExactNames.size() == 13);

constexpr std::array sensitivePrefixes{".env"sv, "service-account"sv, "serviceaccount"sv, "id_rsa"sv,
                                       "id_ed25519"sv};

constexpr std::array sensitiveExtensions{
    "pem"sv, "key"sv, "p12"sv, "pfx"sv, "keystore"sv, "jks"sv, "mobileprovision"sv, "provisionprofile"sv,
    "cer"sv, "der"sv,
};
static_assert(sensitiveExtensions.size() == 10);

struct Hint {
    std::string_view name;
    std::string_view hint;
};

constexpr std::string_view nextBuild = "the next build or lint run";
constexpr std::string_view projectBuild = "the project's build command";
constexpr std::string_view pythonRun = "the next Python run";
constexpr std::string_view testRun = "the next test run";

constexpr std::array hints{
    Hint{"node_modules", "npm install / pnpm install / yarn"},
    Hint{".next", "next build"},
    Hint{".nuxt", "nuxt build"},
    Hint{".output", "nuxt build"},
    Hint{".turbo", nextBuild},
    Hint{".vite", nextBuild},
    Hint{".parcel-cache", nextBuild},
    Hint{".cache", nextBuild},
    Hint{".eslintcache", nextBuild},
    Hint{"dist", projectBuild},
    Hint{"build", projectBuild},
    Hint{"out", projectBuild},
    Hint{"target", "cargo build"},
    Hint{".build", "swift build"},
    Hint{"DerivedData", "an Xcode build"},
    Hint{"Pods", "pod install"},
    Hint{".venv", "python -m venv"},
    Hint{"venv", "python -m venv"},
    Hint{"__pycache__", pythonRun},
    Hint{".pytest_cache", pythonRun},
    Hint{".mypy_cache", pythonRun},
    Hint{".ruff_cache", pythonRun},
    Hint{".gradle", "a Gradle build"},
    Hint{"coverage", testRun},
    Hint{".nyc_output", testRun},
};

template <std::size_t N>
bool contains(const std::array<std::string_view, N>& table, std::string_view name) {
    return std::ranges::find(table, name) != table.end();
}

/// What follows the last dot; a name that only begins with a dot has none.
std::string_view extensionOf(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos || dot == 0 ? std::string_view() : name.substr(dot + 1);
}

/// Over-matching costs a look by a person, under-matching costs a secret: the net is wide on purpose.
bool isSensitive(std::string_view lowercasedName) {
    const auto says = [lowercasedName](std::string_view part) {
        return lowercasedName.find(part) != std::string_view::npos;
    };
    const auto beginsWith = [lowercasedName](std::string_view prefix) {
        return lowercasedName.starts_with(prefix);
    };
    return contains(sensitiveExactNames, lowercasedName) ||
           std::ranges::any_of(sensitivePrefixes, beginsWith) || lowercasedName.ends_with(".env") ||
           contains(sensitiveExtensions, extensionOf(lowercasedName)) || says("credential") ||
           says("secret") || (says("signing") && (says("config") || says("key")));
}

}  // namespace

std::vector<std::string> topLevelEntries(const std::vector<std::string>& paths) {
    std::vector<std::string> names;
    std::unordered_set<std::string_view> seen;
    for (const std::string& path : paths) {
        const std::string_view text = path;
        const std::size_t begin = text.find_first_not_of('/');
        if (begin == std::string_view::npos) continue;
        const std::string_view name = text.substr(begin, text.find('/', begin) - begin);
        if (seen.insert(name).second) names.emplace_back(name);
    }
    return names;
}

IgnoredEntryClass classify(std::string_view name) {
    const std::string lowercased = lowercasedASCII(name);
    if (isSensitive(lowercased)) return IgnoredEntryClass::sensitive;
    const bool isRebuildable = contains(rebuildableNames, name) || contains(rebuildableNames, lowercased);
    return isRebuildable ? IgnoredEntryClass::rebuildable : IgnoredEntryClass::unknown;
}

std::optional<std::string_view> rebuildHint(std::string_view name) {
    const auto found = std::ranges::find(hints, name, &Hint::name);
    if (found == hints.end()) return std::nullopt;
    return found->hint;
}

}  // namespace cairnfield::IgnoredFileClassifier
