#pragma once

#include <string>
#include <string_view>

#include "platform/files/FolderItem.h"

// The dialog for choosing one existing file; the system's own where Qt has it. Used for
// one run.
class OpenDialog {
  public:
    // nullptr, also after setting a folder that is gone, means wherever the system likes to begin.
    FolderItemRef InitialDirectory() const;
    void InitialDirectory(FolderItemRef folder) { mInitialDirectory = std::move(folder); }
    void Title(std::string_view title) { mTitle = title; }
    // Asks the user; stands in the dialog, or beside the title where the system's dialog has no
    // place for it.
    void PromptText(std::string_view text) { mPromptText = text; }
    // Names of file types, separated by ";". The dialog offers the files of those that are
    // registered; if none is, every file.
    void Filter(std::string_view filter) { mFilter = filter; }

    // Blocks until the user answers. nullptr on cancel. A file that was chosen by a link has the
    // link's path.
    FolderItemRef ShowModal();

  private:
    FolderItemRef mInitialDirectory;
    std::string mTitle, mPromptText, mFilter;
};
