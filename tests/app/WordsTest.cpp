#include <QFile>
#include <QLibraryInfo>
#include <QMenu>
#include <QRegularExpression>
#include <QTranslator>

#include <gmock/gmock.h>

#include "SLAppDelegateFixture.h"
#include "app/words/CoreText.h"
#include "app/words/Translations.h"
#include "export/ExportDestination.h"

namespace snaplift {
namespace {

// The window in another language than that of the sources.
class Words : public SLAppDelegateTest {
protected:
  ~Words() override {
    m_delegate.reset();
    qDeleteAll(qApp->findChildren<QTranslator*>());
  }
};

// Says of each text that it was asked for.
class MarkingTranslator : public QTranslator {
public:
  using QTranslator::QTranslator;
  QString translate(const char*, const char* source, const char*, int) const override {
    return "»" + QString(source);
  }
  bool isEmpty() const override { return false; }
};

QStringList textsOf(const QWidget& window) {
  QStringList texts;
  for (const QAction* action : window.findChildren<QAction*>()) {
    texts << action->text() << action->toolTip() << action->statusTip();
  }
  for (const QLabel* label : window.findChildren<QLabel*>()) {
    texts << label->text();
  }
  for (const QAbstractButton* button : window.findChildren<QAbstractButton*>()) {
    texts << button->text();
  }
  for (const QWidget* widget : window.findChildren<QWidget*>()) {
    texts << widget->toolTip() << widget->accessibleName() << widget->accessibleDescription();
  }
  return texts;
}

TEST_F(Words, areGermanInMenusCountsAndAlerts) {
  ASSERT_EQ(installTranslations({"fr-FR", "de-AT", "en"}), "de");
  addBackup("b", 1, 90);
  addBackup("c", 1, 80, true);
  launchWith(3);
  EXPECT_TRUE(waitForText("3 Fotos"));
  EXPECT_EQ(action("actionExportAll").text(), "&Alle exportieren...");
  EXPECT_EQ(contextMenu(1)->actions().back()->text(), "Im Dateimanager anzeigen");
  browser().selectAll();
  EXPECT_TRUE(waitForText("3 von 3 Fotos ausgewählt"));
  select(2);
  EXPECT_TRUE(waitForText("1 Foto"));
  select(3);
  EXPECT_EQ(alert()->text(), "Diese Sicherung ist verschlüsselt");
  answer(alert(), "OK");
  if (QFile::exists(QLibraryInfo::path(QLibraryInfo::TranslationsPath) + "/qtbase_de.qm")) {
    EXPECT_EQ(QCoreApplication::translate("QPlatformTheme", "Close"), "Schließen");
  }
}

TEST_F(Words, areEnglishForWhoeverPrefersThat) {
  EXPECT_EQ(installTranslations({"en-US", "de"}), "en");
  EXPECT_EQ(installTranslations({"fr", "xx/../de", "C"}), "en");
  EXPECT_EQ(coreText(FileError::missing("/x")), "the file is missing");
}

TEST_F(Words, ofTheCoreKeepStrangersWordsAsTheyAre) {
  ASSERT_EQ(installTranslations({"de"}), "de");
  EXPECT_EQ(coreText(*exportDestinationProblem("/%2 the file is missing\n", {})),
            "Den Ordner „/%2 the file is missing\\n“ gibt es nicht.");
  EXPECT_EQ(coreText(Sentence{"%1: %2", {"%2", "%1"}}), "%2: %1");
  EXPECT_EQ(coreText(FileError::encrypted("/x")), "die Sicherung ist verschlüsselt");
  DeviceModel device;
  EXPECT_EQ(deviceTitle(device), "Unbenanntes Gerät");
  device.setName("Unnamed Device");
  EXPECT_EQ(deviceTitle(device), "Unnamed Device");
}

TEST_F(Words, areAllAskedFor) {
  MarkingTranslator translator;
  QCoreApplication::installTranslator(&translator);
  launchWith(1);
  addBackup("b", 1, 90, true);
  launch();
  QStringList texts = textsOf(*m_delegate->window());
  for (const QAction* each : contextMenu(1)->actions()) {
    texts << each->text();
  }
  select(2);
  texts << textsOf(*alert());
  EXPECT_GT(texts.size(), 100);
  for (const QString& text : texts) {
    EXPECT_TRUE(text.contains("»") || !text.contains(QRegularExpression("\\pL")))
        << text.toStdString();
  }
}

}  // namespace
}  // namespace snaplift
