#include "driver/JsonLines.h"

#include "Shared/Errors/CairnfieldError.h"

#include <cstdio>
#include <system_error>

namespace cairnfield {

void JsonLines::print(std::string_view event, Json fields) {
    fields["event"] = event;
    const std::string line = printable(std::move(fields)).dump() + '\n';
    const bool isWritten = std::fwrite(line.data(), 1, line.size(), stdout) == line.size();
    if (!isWritten || std::fflush(stdout) != 0)
        throw std::system_error(errno, std::generic_category(), "writing the answer");
}

void JsonLines::printCurrentError() {
    try {
        throw;
    } catch (const CairnfieldError& error) {
        Json fields{{"case", error.caseName()}, {"description", error.errorDescription()}};
        if (const auto suggestion = error.recoverySuggestion()) fields["suggestion"] = *suggestion;
        print("error", std::move(fields));
    } catch (const std::system_error& error) {
        print("error", {{"case", "systemError"}, {"description", describe(error)}});
    }
}

void JsonLines::printPublishedError(std::string_view field, const std::string& description) {
    print("error", {{"case", field}, {"description", description}});
}

void JsonLines::printIfFailed(std::string_view field, const std::optional<std::string>& failure) {
    if (failure) printPublishedError(field, *failure);
}

}  // namespace cairnfield
