// What the archive of libdbus-1 takes from libsystemd: a server of the bus asks whether it was
// started with sockets. No program of ours is such a server; with this answer, none loads
// libsystemd for the question.
extern "C" int sd_listen_fds(int) { return 0; }
extern "C" int sd_is_socket(int, int, int, int) { return 0; }
