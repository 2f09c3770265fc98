#pragma once
// What a look at files has to ask git as well. The look itself starts no process: it notes what it needs to
// know, goes on as if the answer were harmless, and counts for nothing until git was asked and it was
// repeated. A plain value, one thread at a time.

#include "Services/Git/GitCommandRunner.h"

#include <map>
#include <vector>

namespace cairnfield {

/// One read-only command.
struct GitQuestion {
    FilePath directory;
    GitArguments arguments;

    friend auto operator<=>(const GitQuestion&, const GitQuestion&) = default;
};

struct GitAnswer {
    int exitCode = -1;  ///< below 0 when the command could not be run, or was ended
    std::string output;

    [[nodiscard]] bool succeeded() const { return exitCode == 0; }
};

class GitAnswers {
public:
    /// Null while git was not asked; the question is open then. The answer stays where it is.
    [[nodiscard]] const GitAnswer* to(const GitQuestion& question);

    [[nodiscard]] std::vector<GitQuestion> takeOpen();
    void add(const GitQuestion& question, GitAnswer answer);

private:
    std::map<GitQuestion, GitAnswer> answers_;
    std::vector<GitQuestion> open_;
};

}  // namespace cairnfield
