#include "core/bootstrap.hpp"

#include "logging/logger.hpp"
#include "security/vault.hpp"

namespace perchftp::core {

char const* version()
{
    return "0.1.0";
}

void bootstrap()
{
    auto& logger = logging::Logger::global();
    security::initialize({});
    logger.info("PerchFtp bootstrap initialized");
    logger.info("Vault initialized for credential cache");
    logger.info(version());
}

} // namespace perchftp::core
