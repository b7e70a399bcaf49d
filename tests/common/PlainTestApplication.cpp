#include <QApplication>

QApplication* CreateTestApplication(int& argc, char** argv)
{
    return new QApplication(argc, argv);
}
