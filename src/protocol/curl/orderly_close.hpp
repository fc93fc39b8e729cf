#pragma once

#include <curl/curl.h>

// How the session's sockets are closed on FTPS. A TLS 1.3 server sends session tickets after
// the handshake; an upload's data connection never reads them, and closing a socket with unread
// bytes makes the kernel send a reset instead of an end, which can throw away the last part of
// the upload before the server has read it (vsftpd: "426 Failure reading network stream").
namespace perchftp::protocol::curl::detail {

// For CURLOPT_CLOSESOCKETFUNCTION: ends the sending side, reads and drops what the peer still
// sends until it closes too (for at most a second), then closes the socket.
int closeSocketInOrder(void* unused, curl_socket_t socket);

} // namespace perchftp::protocol::curl::detail
