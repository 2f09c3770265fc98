// A headless program for scripts: everything that a screen can cause, through the model calls that the screen
// makes, as JSON Lines on standard output. Ends with 0 when the command ran, whatever came of it, with 2 when
// the words are wrong, and with 1 when the driver itself failed. Logs go to standard error.

#include "Shared/Errors/CairnfieldError.h"
#include "driver/Commands.h"
#include "driver/SettingWords.h"

#include <cstdio>
#include <span>
#include <string>
#include <vector>

using namespace cairnfield;

namespace {

/// The "--set KEY=JSON" that stand before the command; they are taken off the words.
std::vector<std::string> takeSettings(std::vector<std::string>& words) {
    std::vector<std::string> settings;
    while (!words.empty() && words.front() == "--set") {
        if (words.size() < 2) throw WrongWords("--set needs KEY=JSON");
        settings.push_back(words[1]);
        words.erase(words.begin(), words.begin() + 2);
    }
    return settings;
}

void run(std::vector<std::string> words) {
    const std::vector<std::string> settings = takeSettings(words);
    const auto command = commandFrom(Words(std::move(words)));
    JsonLines lines;
    const Settle settle = [&](SettingsStore& store) {
        for (const std::string& setting : settings) applySetting(store, setting);
    };
    command(settle, lines);
}

}  // namespace

int main(int argc, char** argv) {
    const std::span<char*> arguments(argv, std::size_t(argc));
    try {
        run(std::vector<std::string>(arguments.begin() + 1, arguments.end()));
        return 0;
    } catch (const WrongWords& wrong) {
        std::fprintf(stderr, "cairnfield-driver: %s\n%s", wrong.what(), usage().c_str());
        return 2;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "cairnfield-driver: %s\n", describe(failure).c_str());
        return 1;
    }
}
