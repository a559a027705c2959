#include <QApplication>
#include <QLocale>
#include <cstdio>

#include "app/CommandLine.h"
#include "app/SLAppDelegate.h"
#include "app/words/Translations.h"
#include "backups/BackupAround.h"
#include "foundation/EndInTime.h"
#include "foundation/files/TemporaryFolder.h"
#include "widgets/desktop/SignalledEnd.h"

int main(int argc, char** argv) {
  // Before there is a display, which nobody needs to read a help text.
  if (const auto answer = snaplift::answerOfCommandLine({argv + 1, argv + argc})) {
    std::FILE* stream = answer->status == 0 ? stdout : stderr;
    if (std::fputs(answer->text.c_str(), stream) < 0 || std::fflush(stream) != 0) {
      std::perror("snaplift: the output is not complete");
      return 1;
    }
    return answer->status;
  }
  snaplift::keepTemporaryFolderOutOfBackups();
  snaplift::removeAbandonedTemporaryFolders();
  QApplication application(argc, argv);
  QApplication::setApplicationName("Snaplift");
  QApplication::setApplicationVersion(SNAPLIFT_VERSION);
  QGuiApplication::setDesktopFileName("app.snaplift.Snaplift");
  snaplift::installTranslations(QLocale().uiLanguages());
  const snaplift::SignalledEnd signalledEnd;
  const auto arguments = snaplift::windowArguments({argv + 1, argv + argc});
  snaplift::EndInTime end;
  snaplift::SLAppDelegate delegate;
  delegate.applicationDidFinishLaunching(snaplift::defaultBackupRoot(), arguments.folders,
                                         arguments.keepsState);
  const int status = QApplication::exec();
  delegate.applicationWillTerminate();
  end.set(std::chrono::seconds(2), status);
  return status;
}
