#include "CMorvaneApp.h"

int main(int argc, char** argv)
{
    CMorvaneApp app(argc, argv);
    QStringList files = app.arguments();
    files.removeFirst();
    if (!app.InitInstance(files))
        return 1;
    const int code = app.exec();
    app.Shutdown();
    return code;
}
