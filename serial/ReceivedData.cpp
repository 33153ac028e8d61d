#include "flash/EspWin.h"

// Read and thrown away, so that the device never has to wait for us.
void EspWin::MySerial_DataAvailable(Serial& sender) {
    sender.ReadAll(Encodings::ASCII);
    sender.Flush();
}
