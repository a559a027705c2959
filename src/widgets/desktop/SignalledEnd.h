#pragma once

#include <QObject>

namespace snaplift {

// Lets SIGTERM, SIGINT and SIGHUP end the application as its own Quit does, without a question:
// every event loop returns, the last with `exitStatus`, and who owns work finishes what is in hand.
// A second signal ends the process at once. Signals that the process was started to ignore stay
// ignored. A file size limit, and a display that has gone, become errors of the write that meets
// them, and no end of the process where it stands.
//
// One in a process, made after the application object, on its thread.
class SignalledEnd : public QObject {
  Q_OBJECT

public:
  static constexpr int exitStatus = 130;  // as of snaplift-cli

  explicit SignalledEnd(QObject* parent = nullptr);
};

}  // namespace snaplift
