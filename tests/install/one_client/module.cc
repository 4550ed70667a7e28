// One module of a process: where it finds the two clients.
#include <DAPIClient.h>
#include <NetworkManagerClient.h>

#include "clients.h"

Clients FUNCTION() { return {&DAPIClient::GetInstance(), &NetworkManagerClient::GetInstance()}; }
