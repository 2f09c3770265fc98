#pragma once
// The desktop's clipboard. The selection that the middle button pastes is left alone: it is what the person
// has marked. The text stays to be had until the program ends, or for longer where the desktop keeps it.

#include "Platform/Pasteboard.h"

namespace cairnfield {

class LinuxPasteboard final : public Pasteboard {
public:
    void clearAndWrite(std::string text) override;
};

}  // namespace cairnfield
