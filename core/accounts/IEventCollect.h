#pragma once

/// Counts what the user does; a part of the host. Main thread.
class IEventCollect
{
public:
    /// A login was accepted: called with 1, 0, 0.
    virtual void CollectEvent(int event, int value, int extra) = 0;

protected:
    /// Nobody owns a collector through this interface.
    ~IEventCollect() = default;
};
