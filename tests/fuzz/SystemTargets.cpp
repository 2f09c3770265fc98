#include "Platform/Linux/DesktopEntry.h"
#include "Platform/Linux/MountTable.h"
#include "Services/Process/SafeEnvironment.h"
#include "Shared/Text/Text.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/Targets.h"

#include <algorithm>
#include <string>

namespace cairnfield {

namespace {

/// As the kernel writes a field of its table.
std::string escapedMountField(std::string_view plain) {
    std::string field;
    for (const char character : plain) {
        if (std::string_view(" \t\n\\").find(character) == std::string_view::npos) {
            field += character;
            continue;
        }
        field += '\\';
        for (const int shift : {6, 3, 0}) field += static_cast<char>('0' + (character >> shift & 7));
    }
    return field;
}

std::string withoutNul(std::string_view input) {
    std::string text(input);
    std::erase(text, '\0');
    return text;
}

}  // namespace

void fuzzMountTable(std::string_view input) {
    const std::vector<FilePath> points = mountPointsIn(input);
    promise(std::ssize(points) <= std::ranges::count(input, '\n') + 1, "one mount a line");
    for (const FilePath& point : points) {
        const std::optional<FilePath> source = sourceOfMount(input, point);
        promise(source == sourceOfMount(input, point), "the same table reads the same");
    }
    promise(unescapedMountField(input).size() <= input.size(), "an escape stands for less than itself");

    const FilePath path("/" + withoutNul(input));
    const std::string line =
        "36 35 98:0 / " + escapedMountField(path.bytes()) + " rw,noatime shared:1 - ext4 /dev/root rw\n";
    promise(mountPointsIn(line) == std::vector{path}, "a mount point keeps its bytes");
    promise(sourceOfMount(line, path) == FilePath("/dev/root"), "a mount has a source");
    const std::string over = std::string(input) + "\n" + line;
    promise(mountPointsIn(over).size() == points.size() + 1, "a line stands for itself");
    promise(sourceOfMount(over, path) == FilePath("/dev/root"), "the topmost mount counts");
}

void fuzzDesktopEntry(std::string_view input) {
    DesktopEntry entry(input);
    const std::string text = entry.text();
    promise(isValidUTF8(text) && text.find('\0') == std::string::npos, "an entry is text");
    promise(DesktopEntry(text).text() == text, "what was read reads the same again");

    const std::optional<std::string> hidden = entry.value("Hidden");
    entry.set("Exec", "\"/opt/one\" --word");
    promise(entry.value("Exec") == "\"/opt/one\" --word", "what was set stands");
    promise(entry.value("Hidden") == hidden, "another key stays");
    promise(DesktopEntry(entry.text()).value("Exec") == "\"/opt/one\" --word",
            "what was set survives its text");
    entry.remove("Exec");
    promise(!entry.value("Exec"), "what was removed is gone");
    promise(entry.value("Hidden") == hidden, "another key stays");

    (void)programOfExecLine(input);
    const std::string program = "/" + withoutNul(input);
    promise(programOfExecLine(execLine(FilePath(program), "--at-login")) == program,
            "a program keeps its path");
}

/// Lines of "NAME=VALUE" as the surroundings of git.
void fuzzEnvironment(std::string_view input) {
    Environment environment;
    for (const std::string_view line : splitDroppingEmpty(input, '\n')) {
        const std::size_t sign = std::min(line.find('='), line.size() - 1);
        environment.emplace(line.substr(0, sign), line.substr(sign + 1));
    }
    const Environment safe = safeForGit(environment);
    for (const char* name : {"GIT_DIR", "GIT_WORK_TREE", "GIT_INDEX_FILE", "GIT_CONFIG_PARAMETERS"})
        promise(!safe.contains(name), "nothing leads git elsewhere");
    const std::size_t count = std::stoul(safe.at("GIT_CONFIG_COUNT"));
    promise(safe.at("GIT_CONFIG_KEY_" + std::to_string(count - 1)) == "protocol.ext.allow" &&
                safe.at("GIT_CONFIG_VALUE_" + std::to_string(count - 1)) == "never",
            "our settings stand last");
    for (const auto& [name, value] : safe) {
        if (name != "PATH" && name != "LD_LIBRARY_PATH") continue;
        for (const std::string_view place : splitDroppingEmpty(value, ':'))
            promise(place.starts_with('/'), "no program is looked for in the folder at hand");
    }
    for (const auto& [name, value] : environment) {
        if (name.starts_with("GIT_") || name == "PATH" || name == "LD_LIBRARY_PATH") continue;
        promise(safe.at(name) == value, "what is neither git's nor a place to look stays");
    }
}

}  // namespace cairnfield
