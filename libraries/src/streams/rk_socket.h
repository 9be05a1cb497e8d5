#pragma once

/// Closes a socket; 0 or -1 with errno, as close(2) gives.
int rk_close_socket(int socket);
