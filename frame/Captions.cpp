#include "frame/Captions.h"

#include "platform/system/System.h"

namespace Module1 {

std::string kConnect(std::string_view language) {
    return System().GetLocalizedString("Module1.kConnect", "Connect", language);
}

std::string kDisconnect(std::string_view language) {
    return System().GetLocalizedString("Module1.kDisconnect", "Disconnect", language);
}

std::string kScan(std::string_view language) {
    return System().GetLocalizedString("Module1.kScan", "Sccan", language);
}

std::string kSelect(std::string_view language) {
    return System().GetLocalizedString("Module1.kSelect", "Select", language);
}

std::string kDelete(std::string_view language) {
    return System().GetLocalizedString("Module1.kDelete", "Delete", language);
}

}  // namespace Module1
