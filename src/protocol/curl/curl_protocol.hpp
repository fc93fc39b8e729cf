#pragma once

namespace perchftp::protocol::curl {

// Registers "ftp", "ftps" and "sftp", in this order, each served by the libcurl session.
void registerCurlProtocolAdapters();

} // namespace perchftp::protocol::curl
