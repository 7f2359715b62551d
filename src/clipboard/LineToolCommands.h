// The commands of the "Line Processing" submenu. Those that need an answer from the user ask
// first and validate the answer before the clipboard is read, so an invalid or cancelled answer
// leaves the clipboard and the restorable previous text as they were.
#pragma once

#include "clipboard/text/LineToolCatalogue.h"
#include "platform/Dialogs.h"

#include <QObject>

namespace glyphmill {

class ClipboardManager;
class ClipboardMonitor;

class LineToolCommands final : public QObject {
    Q_OBJECT

public:
    LineToolCommands(ClipboardManager &manager, Dialogs &dialogs, ClipboardMonitor &monitor,
                     QObject *parent = nullptr);

    // Made on first use from the installed platform services; never destroyed.
    static LineToolCommands &shared();

    // The tool's command, with its question if it asks one.
    void run(lineTools::LineTool tool);

    void htmlToPlainText();

    void numberLines();
    void joinLines();
    void splitLines();
    void linesMatchingRegex();
    void linesContaining();
    void findAndReplaceClipboard();

private:
    Dialogs &dialogs_;
    ClipboardManager &manager_;
    ClipboardMonitor &monitor_;
};

} // namespace glyphmill
