#include "app/CMorvaneApp.h"

QApplication* CreateTestApplication(int& argc, char** argv)
{
    return new CMorvaneApp(argc, argv);
}
