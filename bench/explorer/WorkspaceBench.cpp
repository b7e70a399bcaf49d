// Times the workspace operations that grow with its size: save, open, and AddFile of a
// new file once the tree is full (a search by path over every item would be linear).
#include "explorer/CBaseTreeCtrl.h"
#include "explorer/CWorkspace.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double Ms(const QElapsedTimer& timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}

} // namespace

int main(int argc, char** argv)
{
    // Offscreen unless told otherwise: the figures with a view need no screen.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int files = argc > 1 ? std::max(1, atoi(argv[1])) : 20000;
    const int folders = argc > 2 ? std::max(1, atoi(argv[2])) : 500;
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("bench.spf"));

    CWorkspace built;
    built.NewWorkspace();
    QElapsedTimer timer;
    timer.start();
    std::vector<CTreeNode*> made;
    for (int f = 0; f < folders; ++f)
        made.push_back(built.AddFolder(built.Root(), QStringLiteral("folder %1").arg(f)));
    for (int i = 0; i < files; ++i)
        built.AddFile(QStringLiteral("/home/user/src/module%1/file%2.cpp").arg(i % folders).arg(i),
                      made[size_t(i % folders)], 0, 0);
    const double buildMs = Ms(timer);

    std::vector<double> saves, opens, adds, finds;
    const int rounds = 5;
    for (int round = 0; round < rounds; ++round) {
        timer.restart();
        if (!built.SaveWorkspace(path)) {
            std::fprintf(stderr, "save failed\n");
            return 1;
        }
        saves.push_back(Ms(timer));

        CWorkspace opened;
        timer.restart();
        if (!opened.OpenWorkspace(path)) {
            std::fprintf(stderr, "open failed\n");
            return 1;
        }
        opens.push_back(Ms(timer));
        if (opened.Model().NodeCount() != files + folders + 1) {
            std::fprintf(stderr, "open read %d items, expected %d\n", opened.Model().NodeCount(), files + folders + 1);
            return 1;
        }

        // A file already there (the last one written) and a new one.
        timer.restart();
        opened.AddFile(QStringLiteral("/HOME/USER/SRC/MODULE%1/FILE%2.CPP").arg((files - 1) % folders).arg(files - 1),
                       nullptr, 0, 0);
        finds.push_back(Ms(timer));
        timer.restart();
        opened.AddFile(QStringLiteral("/home/user/new/file%1.cpp").arg(files + round), nullptr, 0, 0);
        adds.push_back(Ms(timer));
        if (opened.Model().NodeCount() != files + folders + 2) {
            std::fprintf(stderr, "the new file was not added once\n");
            return 1;
        }
    }

    // The same open with the tree shown, as the Project Explorer shows it.
    std::vector<double> viewOpens;
    for (int round = 0; round < rounds; ++round) {
        CWorkspace shown;
        shown.NewWorkspace();
        CBaseTreeCtrl view;
        view.SetTreeModel(&shown.Model());
        QObject::connect(&shown, &CWorkspace::selectRequested, &view, &CBaseTreeCtrl::SelectNode);
        QObject::connect(&shown, &CWorkspace::expandRequested, &view, &CBaseTreeCtrl::ExpandNode);
        view.resize(300, 600);
        view.show();
        QCoreApplication::processEvents();
        timer.restart();
        shown.OpenWorkspace(path);
        QCoreApplication::processEvents(); // the view lays the tree out
        view.repaint();
        viewOpens.push_back(Ms(timer));
    }

    std::printf("workspace of %d files in %d folders (file of %lld bytes), median of %d rounds\n", files, folders,
                QFileInfo(path).size(), rounds);
    std::printf("  build by AddFile     %8.1f ms (%.2f us per file)\n", buildMs, buildMs * 1000.0 / files);
    std::printf("  save                 %8.1f ms   (goal 300 ms, %.2fx of it)\n", Median(saves), Median(saves) / 300.0);
    std::printf("  open                 %8.1f ms   (goal 300 ms, %.2fx of it)\n", Median(opens), Median(opens) / 300.0);
    std::printf("  open into a shown tree %6.1f ms   (goal 300 ms, %.2fx of it)\n", Median(viewOpens),
                Median(viewOpens) / 300.0);
    std::printf("  AddFile, new file    %8.3f ms   (goal 1 ms, %.2fx of it)\n", Median(adds), Median(adds) / 1.0);
    std::printf("  AddFile, known file  %8.3f ms\n", Median(finds));
    return 0;
}
