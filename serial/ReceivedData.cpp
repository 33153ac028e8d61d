#include "flash/EspWin.h"

// The window reads what the device sends and throws it away, so that the device never has to wait.
void EspWin::MySerial_DataAvailable(Serial& sender) {
    sender.ReadAll(Encodings::ASCII);
    sender.Flush();
}
