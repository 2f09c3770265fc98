#include "fuzz/Scratch.h"

#include "support/TemporaryDirectory.h"

#include <filesystem>

namespace cairnfield {

namespace {

const TemporaryDirectory& folder() {
    static const TemporaryDirectory made;
    return made;
}

}  // namespace

Scratch::Scratch() {
    (void)folder();
}

Scratch::~Scratch() {
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(path().bytes(), ignored))
        std::filesystem::remove_all(entry.path(), ignored);
}

const FilePath& Scratch::path() const {
    return folder().path();
}

void Scratch::write(std::string_view name, std::string_view content) const {
    (void)folder().write(name, content);
}

}  // namespace cairnfield
