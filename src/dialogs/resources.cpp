#include "dialogs/resources.h"

void TameriskRegisterResources()
{
}
