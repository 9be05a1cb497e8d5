#include "misc/rktl_Machine.h"

#include <cstring>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace rktl {

namespace {

String hardwareAddress(sockaddr const& address)
{
    unsigned char bytes[6];
    std::memcpy(bytes, address.sa_data, sizeof(bytes));
    return String::fromFormat("%02x:%02x:%02x:%02x:%02x:%02X", bytes[0], bytes[1], bytes[2], bytes[3], bytes[4], bytes[5]);
}

bool addAddresses(int socket, std::list<String>& list)
{
    ifreq records[64];
    ifconf interfaces{};
    interfaces.ifc_len = sizeof(records);
    interfaces.ifc_req = records;
    if (ioctl(socket, SIOCGIFCONF, &interfaces) < 0)
        return false;
    list.clear();
    size_t const count = static_cast<size_t>(interfaces.ifc_len) / sizeof(ifreq);
    for (size_t i = 0; i < count; ++i) {
        if (records[i].ifr_addr.sa_family != AF_INET)
            continue;
        if (ioctl(socket, SIOCGIFHWADDR, &records[i]) < 0)
            return false;
        list.push_back(hardwareAddress(records[i].ifr_hwaddr));
    }
    return true;
}

} // namespace

String getMachineName()
{
    char name[256] = {};
    return gethostname(name, sizeof(name) - 1) == 0 ? String(name) : String();
}

bool enumerateMACAddresses(std::list<String>& list)
{
    int const datagrams = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (datagrams < 0)
        return false;
    bool const complete = addAddresses(datagrams, list);
    close(datagrams);
    return complete;
}

} // namespace rktl
