#include "streams/rk_socket.h"

#include <unistd.h>

int rk_close_socket(int socket)
{
    return close(socket);
}
