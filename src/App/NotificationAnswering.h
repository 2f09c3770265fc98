#pragma once
// What the answer to a notification can ask of the model. Main thread only; never fails. Both act on the one
// storage incident, whatever notification was answered.

namespace cairnfield {

class NotificationAnswering {
public:
    virtual ~NotificationAnswering() = default;

    virtual void snoozeIncident(int hours) = 0;
    virtual void ignoreCurrentIncident() = 0;
};

}  // namespace cairnfield
