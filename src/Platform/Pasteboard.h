#pragma once
// What a person copied last, as every program of the session sees it. Main thread only. The desktop does not
// tell whether it took the text, so that nothing fails here.

#include <string>

namespace cairnfield {

class Pasteboard {
public:
    virtual ~Pasteboard() = default;

    /// Replaces whatever was there by plain text in UTF-8.
    virtual void clearAndWrite(std::string text) = 0;
};

}  // namespace cairnfield
