#include "flash/EspWin.h"

// Drained, so that the device never waits for us; nothing shows it.
void EspWin::MySerial_DataAvailable(Serial& sender) {
    sender.ReadAll(Encodings::ASCII);
    sender.Flush();
}

void EspWin::ResetEF_TextChange(TextField&) { MakeCommand(); }
