#pragma once
// Turns what a person did with a notification into a call on the model, on the program's windows or on the
// file manager. Holds no state of its own: the model holds this strongly and is held weakly in turn, so that
// the two do not keep each other alive. Main thread only; never fails.

#include "App/NotificationAnswering.h"
#include "Platform/Application.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Workspace.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace cairnfield {

class NotificationCenterDelegate final {
public:
    /// The application and the workspace outlive this.
    NotificationCenterDelegate(std::weak_ptr<NotificationAnswering> model, Application& application,
                               Workspace& workspace);

    /// The center hands its responses to the delegate for as long as somebody else holds it.
    static void install(const std::shared_ptr<NotificationCenterDelegate>& delegate,
                        NotificationCenter& center);

    void didReceive(const NotificationResponse& response);

    /// Nothing at all once the model is gone. An identifier that means nothing here does nothing.
    void handle(std::string_view actionIdentifier, const std::optional<std::string>& path);

private:
    /// Brings the program forward, and of its windows the first that can be the main one. Makes no window.
    void activateApp();
    void reveal(const std::string& path);

    std::weak_ptr<NotificationAnswering> model_;
    Application& application_;
    Workspace& workspace_;
};

}  // namespace cairnfield
