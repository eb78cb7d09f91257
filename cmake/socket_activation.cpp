// Replaces the function that the static libdbus-1 needs from libsystemd. Only a D-Bus server uses
// it, to ask whether it was started with sockets. Kivo's programs are not servers, and with this
// replacement they do not load libsystemd.
extern "C" int sd_listen_fds(int) { return 0; }
extern "C" int sd_is_socket(int, int, int, int) { return 0; }
