#include "driver/Words.h"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace cairnfield {

bool Words::takeOption(std::string_view name) {
    const auto end = std::ranges::find(words_, "--");
    const auto found = std::find(words_.begin(), end, name);
    if (found == end) return false;
    words_.erase(found);
    return true;
}

std::vector<std::string> Words::takeValues(std::string_view name) {
    std::vector<std::string> values;
    for (;;) {
        const auto end = std::ranges::find(words_, "--");
        const auto found = std::find(words_.begin(), end, name);
        if (found == end) return values;
        const auto value = found + 1;
        if (value == end) throw WrongWords(std::string(name) + " needs a value");
        values.push_back(*value);
        words_.erase(found, value + 1);
    }
}

std::optional<std::string> Words::takeValue(std::string_view name) {
    std::vector<std::string> values = takeValues(name);
    if (values.size() > 1) throw WrongWords("more than one " + std::string(name));
    if (values.empty()) return std::nullopt;
    return std::move(values.front());
}

std::vector<FilePath> Words::takePathsAfter(std::string_view name) {
    std::vector<FilePath> paths;
    for (;;) {
        const auto end = std::ranges::find(words_, "--");
        const auto found = std::find(words_.begin(), end, name);
        if (found == end) break;
        const auto next =
            std::find_if(found + 1, end, [](const auto& word) { return word.starts_with("--"); });
        if (next == found + 1) throw WrongWords(std::string(name) + " needs a value");
        std::transform(found + 1, next, std::back_inserter(paths), absolutePath);
        words_.erase(found, next);
    }
    if (paths.empty()) throw WrongWords("missing: " + std::string(name));
    return paths;
}

std::string Words::take(std::string_view what) {
    if (words_.empty()) throw WrongWords("missing: " + std::string(what));
    std::string word = std::move(words_.front());
    words_.erase(words_.begin());
    return word;
}

std::vector<FilePath> Words::takePaths(std::string_view what) {
    std::vector<FilePath> paths;
    bool optionsEnded = false;
    for (const std::string& word : std::exchange(words_, {})) {
        if (!optionsEnded && word == "--") {
            optionsEnded = true;
        } else if (!optionsEnded && word.starts_with("--")) {
            throw WrongWords("unknown option: " + word);
        } else {
            paths.push_back(absolutePath(word));
        }
    }
    if (paths.empty()) throw WrongWords("missing: " + std::string(what));
    return paths;
}

FilePath Words::takePath(std::string_view what) {
    const std::vector<FilePath> paths = takePaths(what);
    if (paths.size() > 1) throw WrongWords("more than one " + std::string(what));
    return paths.front();
}

void Words::end() const {
    if (!words_.empty()) throw WrongWords("unknown word: " + words_.front());
}

FilePath absolutePath(const std::string& word) {
    if (word.starts_with('/')) return FilePath(word);
    return FilePath(std::filesystem::current_path().native()).appending(word);
}

}  // namespace cairnfield
