#include "driver/Records.h"

#include "Models/JSONFields.h"

#include <utility>

namespace cairnfield {

Json jsonOf(const Worktree& worktree) {
    Json json(worktree);
    json["id"] = worktree.id();
    json["displayBranch"] = jsonFromText(worktree.displayBranch());
    json["safety"] = rawValue(worktree.safety);
    json["disposition"] = rawValue(disposition(worktree.safety));
    return json;
}

Json jsonOf(const std::vector<Worktree>& worktrees) {
    Json list = Json::array();
    for (const Worktree& worktree : worktrees) list.push_back(jsonOf(worktree));
    return list;
}

Json jsonOf(const ProjectUsage& project) {
    Json json{{"id", project.id()},
              {"repositoryRoot", project.repositoryRoot},
              {"name", jsonFromText(project.name)},
              {"worktrees", jsonOf(project.worktrees)},
              {"totalBytes", project.totalBytes()},
              {"worktreeCount", project.worktreeCount()},
              {"linkedWorktreeCount", project.linkedWorktreeCount()},
              {"needsAttentionCount", project.needsAttentionCount()},
              {"reclaimableBytes", project.reclaimableBytes()},
              {"isFullySized", project.isFullySized()}};
    detail::writeOptional(json, "lastActivity", project.lastActivity());
    return json;
}

Json jsonOf(const GitHubIntegrationStatus& status) {
    Json json{{"isInstalled", status.isInstalled},
              {"authenticatedHosts", detail::jsonFromTexts(status.authenticatedHosts)}};
    detail::writeOptional(json, "version", status.version);
    detail::writeOptional(json, "executablePath", status.executablePath);
    detail::writeOptional(json, "errorDescription", status.errorDescription);
    return json;
}

Json jsonOf(const CleanupPlan& plan) {
    Json json{{"worktree", jsonOf(plan.worktree)},
              {"trackedPathsToCommit", detail::jsonFromTexts(plan.trackedPathsToCommit)},
              {"untrackedPathsToCommit", detail::jsonFromTexts(plan.untrackedPathsToCommit)},
              {"filesToArchive", plan.filesToArchive},
              {"excludedSensitiveFiles", plan.excludedSensitiveFiles},
              {"commitMessage", jsonFromText(plan.commitMessage)},
              {"recoveryBranch", jsonFromText(plan.recoveryBranch)},
              {"createPullRequest", plan.createPullRequest},
              {"retentionDays", plan.retentionDays}};
    detail::writeOptional(json, "baseBranch", plan.baseBranch);
    detail::writeOptional(json, "remoteName", plan.remoteName);
    return json;
}

Json jsonOf(const ReviewLook& look) {
    Json json{{"nestedSensitiveFiles", look.nested.seen}};
    detail::writeOptional(json, "failure", look.nested.failure);
    if (look.missing)
        json["missingFiles"] = {{"missing", look.missing->missing}, {"tracked", look.missing->tracked}};
    return json;
}

Json jsonOf(const CleanupPreflightReport& report) {
    Json json{{"passed", report.passed},
              {"failures", detail::jsonFromTexts(report.failures)},
              {"warnings", detail::jsonFromTexts(report.warnings)},
              {"remoteIsWritable", report.remoteIsWritable}};
    if (report.fingerprint) json["fingerprint"] = {{"value", report.fingerprint->value}};
    detail::writeOptional(json, "resolvedBaseBranch", report.resolvedBaseBranch);
    return json;
}

Json jsonOf(const CleanupProgress& progress) {
    Json json{{"stage", rawValue(progress.stage)}};
    detail::writeOptional(json, "detail", progress.detail);
    return json;
}

}  // namespace cairnfield
