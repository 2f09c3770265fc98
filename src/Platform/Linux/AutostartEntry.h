#pragma once
// The program's entry in the desktop's autostart folder. Main thread only; reads and writes one small file.
//
// The status is what a desktop would make of the entry as it stands. Hidden=true and
// X-GNOME-Autostart-enabled=false, the ways in which desktops let a person switch an entry off, count as
// waiting for approval. Not found is an entry that cannot be read or is no application, an Exec whose program
// is gone or is another one, and a TryExec that is gone. A program that is reached through a wrapper or by
// its bare name is not recognised as this one. For which desktops an entry is meant is not looked at.
//
// Registering writes our keys over what is there and keeps what others added. The file is replaced as a whole
// (Shared/Files/AtomicFile.h): a link in its place is replaced too, and what it led to stays as it is.
// Unregistering deletes the entry.

#include "Platform/LoginItem.h"
#include "Shared/Paths/FilePath.h"

namespace cairnfield {

class AutostartEntry final : public LoginItem {
public:
    /// `configHome` holds the folder "autostart". `program` is the absolute path of what is to be started,
    /// with the word --at-login. Touches nothing.
    AutostartEntry(const FilePath& configHome, FilePath program);

    [[nodiscard]] const FilePath& file() const { return file_; }

    [[nodiscard]] LoginItemStatus status() const override;
    /// Throws also when the program's path is not UTF-8, which an entry cannot hold.
    void registerItem() override;
    void unregisterItem() override;

private:
    const FilePath file_;
    const FilePath program_;
};

/// The absolute path of this process's program. To be asked early: a program replaced by its update is named
/// anew by the system. Throws std::system_error.
[[nodiscard]] FilePath runningProgram();

}  // namespace cairnfield
