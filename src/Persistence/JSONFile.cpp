#include "Persistence/JSONFile.h"

#include <nlohmann/json.hpp>

#include <string>

namespace cairnfield {

bool JSONFile::read(StoredFile& file, const std::function<void(const Json&)>& decode) {
    return file.read([&](const std::string& bytes) { decode(Json::parse(bytes)); });
}

void JSONFile::write(StoredFile& file, const Json& value) {
    file.replace(value.dump(2) + "\n");
}

}  // namespace cairnfield
