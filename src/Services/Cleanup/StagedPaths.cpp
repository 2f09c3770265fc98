#include "Services/Cleanup/StagedPaths.h"

#include <utility>

namespace cairnfield::StagedPaths {

std::string argumentFor(const std::string& path) {
    const bool isPattern = path.starts_with(':') || path.find_first_of("*?[\\") != std::string::npos;
    return isPattern ? ":(literal)" + path : path;
}

std::vector<std::vector<std::string>> batches(const std::vector<std::string>& paths, std::size_t maximum) {
    constexpr std::size_t overhead = sizeof(char*) + 1;  // its place in the vector, and the byte that ends it
    std::vector<std::vector<std::string>> all;
    std::size_t used = 0;
    for (const std::string& path : paths) {
        std::string argument = argumentFor(path);
        const std::size_t size = argument.size() + overhead;
        if (all.empty() || used + size > maximum) {
            all.emplace_back();
            used = 0;
        }
        used += size;
        all.back().push_back(std::move(argument));
    }
    return all;
}

}  // namespace cairnfield::StagedPaths
