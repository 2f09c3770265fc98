#pragma once

namespace cairnfield {

/// To be called once, before any thread is started: what whoever started this process did to its signals
/// does not reach us. No signal is blocked, and all have their default disposition, but for these:
///
/// - SIGPIPE is ignored, since a write to a pipe without a reader is a failure and no reason to end.
/// - SIGHUP, SIGINT and SIGQUIT stay ignored where they are: that is how a person asks, with nohup or a
///   background job, that the terminal does not end the program.
///
/// An ignored SIGCHLD above all would have the kernel throw away how children ended, and free their process
/// numbers while we still hold them. Never fails.
void settleSignals() noexcept;

}  // namespace cairnfield
