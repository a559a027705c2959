#pragma once

#include <QByteArray>
#include <string>
#include <vector>

#include "export/ExportLayout.h"
#include "photos/PhotoArrangement.h"

namespace snaplift {

// What the window keeps for its next start: its size and place, the divider, whether films are
// shown, how photos are arranged and whether Get Info is open, the folders that were open and those
// that were opened lately, the folder of the last export, and how photos are exported. Kept in
// three files and nowhere else: "folders.ini" and "export.ini" in "$XDG_CONFIG_HOME/snaplift", and
// "$XDG_STATE_HOME/snaplift/window.ini". One that keeps nothing reads and writes nothing. Files
// that cannot be read or written are passed over: nobody wants to hear of them.
class RememberedState {
public:
  static constexpr std::size_t recentFolderCount = 10;

  explicit RememberedState(bool keeps) : m_keeps(keeps) {}

  struct Window {
    QByteArray geometry, divider;  // as Qt writes them
  };
  Window window() const;
  void setWindow(const Window& window) const;

  // Whether films and pictures beside the photos are shown.
  bool showsOtherMedia() const;
  void setShowsOtherMedia(bool shows) const;

  // How photos are arranged, the text apart, and whether their dates stand below them.
  struct Look {
    PhotoWishes wishes;
    bool showsDates = false;
  };
  Look look() const;
  void setLook(const Look& look) const;

  // Whether the panel of Get Info is open.
  bool showsInfo() const;
  void setShowsInfo(bool shows) const;

  std::vector<std::string> openFolders() const { return folders("open"); }
  void setOpenFolders(const std::vector<std::string>& open) const { setFolders("open", open); }

  // The latest first.
  std::vector<std::string> recentFolders() const;
  void addRecentFolder(const std::string& folder);
  void clearRecentFolders();

  // Where the last export went, to whatever end it came; empty where none is known.
  std::string exportFolder() const;
  void setExportFolder(const std::string& folder) const { setFolders("export", {folder}); }
  struct Export {
    bool keepsDates = true;
    bool skipsExisting = false;
    ExportLayout layout = ExportLayout::Flat;  // of an export of everything
  };
  Export exportSettings() const;
  void setExportSettings(const Export& settings) const;

private:
  std::vector<std::string> folders(const char* key) const;
  void setFolders(const char* key, const std::vector<std::string>& folders) const;

  bool m_keeps;
  std::vector<std::string> m_recent;  // where nothing is kept, those of this run
};

}  // namespace snaplift
