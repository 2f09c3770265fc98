#include "Models/DirectoryScan.h"

#include <nlohmann/json.hpp>

namespace cairnfield {

void to_json(Json& json, const ChildSize& child) {
    json = {{"url", child.url}, {"bytes", child.bytes}, {"isDirectory", child.isDirectory}};
}

void to_json(Json& json, const DirectoryScanResult& result) {
    json = {{"url", result.url},
            {"totalBytes", result.totalBytes},
            {"fileCount", result.fileCount},
            {"isEstimated", result.isEstimated},
            {"permissionErrorPaths", result.permissionErrorPaths},
            {"largestChildren", result.largestChildren},
            {"duration", result.duration},
            {"scannedAt", jsonFromDate(result.scannedAt)}};
}

}  // namespace cairnfield
