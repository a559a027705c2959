#include <QApplication>
#include <QMainWindow>
#include <QStandardItemModel>
#include <QTimer>
#include <QTreeView>
#include <cstdlib>
#include <ctime>
#include <string>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "app/SLAppDelegate.h"
#include "bench/Ratio.h"
#include "foundation/Log.h"
#include "foundation/files/TemporaryFolder.h"
#include "samples/BackupWriter.h"

// What a user waits for after a double-click: a whole process, from its start until the sidebar of
// a hundred backups has been painted, against a window with an empty tree view. And what the window
// costs while nobody touches it.
namespace snaplift::bench {
namespace {

constexpr int backupCount = 100;

void writeBackups(const std::string& root) {
  for (int i = 0; i < backupCount; ++i) {
    const std::string number = std::to_string(i);
    samples::writeBackup(root + "/" + number,
                         {.generation = samples::Generation::Five,
                          .deviceName = "Phone " + std::to_string(i % 10),
                          .productVersion = "5.0",
                          .date = instantFromUnixTime(1'300'000'000 + i * 86'400)});
  }
}

// Ends the process as soon as a view has been painted, without any tidying up.
class FirstPaint : public QObject {
public:
  explicit FirstPaint(QWidget& view) : m_view(view) { view.installEventFilter(this); }

private:
  bool eventFilter(QObject* object, QEvent* event) override {
    if (event->type() == QEvent::Paint) {
      QTimer::singleShot(0, &m_view, [] { ::_exit(0); });
    }
    return QObject::eventFilter(object, event);
  }

  QWidget& m_view;
};

int paintEmptyWindow() {
  QMainWindow window;
  QTreeView tree;
  QStandardItemModel model(0, 1);  // no rows, but the header that every tree view has
  tree.setModel(&model);
  window.setCentralWidget(&tree);
  const FirstPaint paint(*tree.viewport());
  window.resize(1040, 700);
  window.show();
  return QApplication::exec();
}

int paintSnaplift(const std::string& root) {
  SLAppDelegate delegate;
  const FirstPaint paint(*delegate.window()->findChild<ORBSourceList*>()->viewport());
  delegate.applicationDidFinishLaunching(root);
  return QApplication::exec();
}

// This program again, as a process of its own that does one of the two. What it logs is written,
// but not shown: a line for each backup.
bool runs(const char* program, const char* what, const std::string& root) {
  const char* arguments[] = {program, what, root.c_str(), nullptr};
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t process = 0;
  int status = -1;
  const bool isDone = ::posix_spawn(&process, "/proc/self/exe", &actions, nullptr,
                                    const_cast<char* const*>(arguments), environ) == 0 &&
                      ::waitpid(process, &status, 0) == process && status == 0;
  ::posix_spawn_file_actions_destroy(&actions);
  return isDone;
}

// Milliseconds of processor time, of all threads, in ten seconds in which nothing happens.
double idleMilliseconds(const std::string& root) {
  const LogCapture silent([](const std::string&) {});
  SLAppDelegate delegate;
  delegate.applicationDidFinishLaunching(root);
  std::clock_t start = 0;
  QTimer::singleShot(1'000, qApp, [&] { start = std::clock(); });
  QTimer::singleShot(11'000, qApp, [] { QCoreApplication::exit(); });
  QApplication::exec();
  return static_cast<double>(std::clock() - start) * 1'000 / CLOCKS_PER_SEC;
}

int runStartBench(int argc, char** argv) {
  const std::string root = temporaryFolder() + "/root";
  writeBackups(root);
  Ratios ratios;
  ratios.group("start with 100 backups", PageCache::Hot)
      .floor("empty window", [&] { return runs(argv[0], "empty", root); })
      .subject("first painted sidebar", 1.5, [&] { return runs(argv[0], "snaplift", root); });
  ratios.figure("processor time of 10 s at rest", "ms", 10, [&] { return idleMilliseconds(root); });
  return ratios.run(argc, argv);
}

}  // namespace
}  // namespace snaplift::bench

int main(int argc, char** argv) {
  using namespace snaplift::bench;
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
  }
  QApplication application(argc, argv);
  const std::string what = argc == 3 ? argv[1] : "";
  return what == "empty"      ? paintEmptyWindow()
         : what == "snaplift" ? paintSnaplift(argv[2])
                              : runStartBench(argc, argv);
}
