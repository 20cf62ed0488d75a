#include "Shared/Base/AppConnector.h"

#include <atomic>

namespace
{
std::atomic<CAppConnector*> g_Connector{nullptr};
}

CAppConnector* CAppConnector::Get()
{
    return g_Connector.load();
}

void CAppConnector::Install(CAppConnector* connector)
{
    g_Connector.store(connector);
}
