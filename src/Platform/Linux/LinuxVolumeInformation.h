#pragma once
// The volume of a path as the kernel tells it. No state; any thread.
//
// Capacities are those of statvfs; Linux knows no reserve that it would free for something important. The
// root is found by walking up, links resolved, until the device changes. The name is the file system's label
// by the links that udev keeps; what has no label, or no device of its own, such as a network share, has no
// name here.

#include "Platform/Volume.h"

#include <sys/types.h>

#include <string_view>

namespace cairnfield {

class LinuxVolumeInformation final : public VolumeInformation {
public:
    /// `labels` holds a link to the device for each label; `mountinfo` is the kernel's table of mounts.
    /// Neither needs to exist, or to be readable, for facts().
    explicit LinuxVolumeInformation(FilePath labels = FilePath("/dev/disk/by-label"),
                                    FilePath mountinfo = FilePath("/proc/self/mountinfo"))
        : labels_(std::move(labels)), mountinfo_(std::move(mountinfo)) {}

    [[nodiscard]] VolumeFacts facts(const FilePath& path) const override;
    [[nodiscard]] std::vector<FilePath> mountPoints() const override;

private:
    const FilePath labels_;
    const FilePath mountinfo_;
};

/// The label of a device, by the name of the link that leads to it, decoded.
[[nodiscard]] std::optional<std::string> labelOfDevice(dev_t device, const FilePath& labels);

/// A label as udev writes it into a file name: a byte that it finds unsafe is "\x" and two hexadecimal
/// digits.
[[nodiscard]] std::string decodedLabel(std::string_view name);

}  // namespace cairnfield
