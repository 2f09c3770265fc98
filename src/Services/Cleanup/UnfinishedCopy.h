#pragma once
// A copy of a file that appears under its name as a whole or not at all, and the folders that it is put into.
// Everything here goes by descriptors, so that no link that somebody puts in the way leads elsewhere. For the
// Recovery Vault alone. Blocking, any thread; everything throws std::system_error.

#include "Shared/Concurrency/FileDescriptor.h"
#include "Shared/Paths/FilePath.h"

#include <string>

namespace cairnfield {

/// An existing folder.
[[nodiscard]] FileDescriptor openFolder(const FilePath& folder);
/// A folder in another one, made for the user alone when it is missing. A link of that name is refused.
[[nodiscard]] FileDescriptor enterFolder(int parent, const std::string& name);
/// What was put into the folder is on disk from now on.
void syncFolder(int folder);

/// Readable by the user alone; keeps the time of the last change of its source. Goes away again unless it was
/// given its name. After a crash nothing stays of one without a name; a named one stays, and
/// removeUnfinishedCopies() knows it.
class UnfinishedCopy {
public:
    enum class Form {
        withoutName,  ///< falls back to `named` where the file system knows no files without one
        named,
    };

    /// Copies all that `source` has, from its beginning, into a new file in `folder`, and has the disk begin
    /// to write it; holes stay holes. Both descriptors outlive the copy, and the position of `source` moves.
    UnfinishedCopy(int folder, int source, Form form = Form::withoutName);
    ~UnfinishedCopy();
    UnfinishedCopy(const UnfinishedCopy&) = delete;
    UnfinishedCopy& operator=(const UnfinishedCopy&) = delete;

    /// Reads both again, from beginning to end, holes too, and compares every byte: one piece as soon as it
    /// is written, while the disk writes the next. The whole copy is on disk when this returns true. To be
    /// asked before the copy gets its name.
    [[nodiscard]] bool equalsSource() const;

    /// Gives it its name in a folder of the same file system; a file of that name is replaced.
    void replace(int folder, const std::string& name);
    /// Gives it its name unless something has it; then nothing is changed, and the answer is false.
    [[nodiscard]] bool appearAs(int folder, const std::string& name);

private:
    void makeFile(Form form);
    void giveProvisionalName();

    const int folder_;
    const int source_;
    FileDescriptor file_;
    std::string provisionalName_;  ///< in folder_; empty while or since it has none
};

/// Deletes what crashes left in `folder`, recognised by its name alone.
void removeUnfinishedCopies(int folder);

}  // namespace cairnfield
