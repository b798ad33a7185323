// SPDX-License-Identifier: MIT
#include "web/browser_engine.h"

#include "common/platform.h"
#include "web/browser.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QLibraryInfo>
#include <QOpenGLContext>
#include <QPluginLoader>

#ifndef QT_NO_OPENGL
QT_BEGIN_NAMESPACE
// Qt has no public way to share contexts from later than the start of a program on; its own engine
// takes this one.
Q_GUI_EXPORT void qt_gl_set_global_share_context(QOpenGLContext* context);
QT_END_NAMESPACE
#endif

namespace
{

/// Found where Qt looks for plugins: beside the program, and in QT_PLUGIN_PATH.
QString engineLibrary()
{
    return QPluginLoader(QStringLiteral("plugins/tarn-web-engine")).fileName();
}

/// Where the engine itself looks for its other program.
bool hasItsProgram()
{
    const QString set = qEnvironmentVariable("QTWEBENGINEPROCESS_PATH");
    if (!set.isEmpty())
        return QFileInfo::exists(set);
    const QStringList folders{QLibraryInfo::location(QLibraryInfo::LibraryExecutablesPath),
                              QCoreApplication::applicationDirPath()};
    for (const QString& folder : folders) {
        if (!QDir(folder).entryList({QStringLiteral("QtWebEngineProcess*")}, QDir::Files).isEmpty())
            return true;
    }
    return false;
}

/// The engine draws by OpenGL where it can. Before its library is loaded, which asks for the
/// context.
void allowOpenGl()
{
#ifndef QT_NO_OPENGL // without it there is no engine either
    // The window stays as it is; what draws by OpenGL stands in native windows of its own.
    QCoreApplication::setAttribute(Qt::AA_ForceRasterWidgets, false);
    QCoreApplication::setAttribute(Qt::AA_DontCreateNativeWidgetSiblings);
    if (QOpenGLContext::globalShareContext())
        return;
    auto* context = new QOpenGLContext;
    context->create(); // without OpenGL here the engine sees that in the context
    qt_gl_set_global_share_context(context);
    // The last comes first: the engine, which adds its own later, is gone by then.
    qAddPostRoutine([] {
        delete QOpenGLContext::globalShareContext();
        qt_gl_set_global_share_context(nullptr);
    });
#endif
}

} // namespace

namespace BrowserEngine
{

void prepare()
{
    // A window that could show OpenGL loads its drivers at the start, which costs more than all the
    // rest of it.
    QCoreApplication::setAttribute(Qt::AA_ForceRasterWidgets);
}

Obstacle obstacle()
{
    if (engineLibrary().isEmpty())
        return Obstacle::NotInstalled;
    switch (Platform::browserSandbox()) {
    case Platform::Sandbox::RefusesRoot:
        return Obstacle::RunsAsRoot;
    case Platform::Sandbox::Unavailable:
        return Obstacle::NoIsolation;
    case Platform::Sandbox::Ready:
        break;
    }
    return hasItsProgram() ? Obstacle::None : Obstacle::Incomplete;
}

Browser* createBrowser(QWidget* parent)
{
    allowOpenGl();
    QPluginLoader library(engineLibrary());
    // Asked before anything of it runs: what it was built for must be what is called here.
    const QString kind = library.metaData().value(QStringLiteral("IID")).toString();
    if (kind != QLatin1String(TARN_BROWSER_FACTORY)) {
        qWarning().noquote() << library.fileName() << "offers" << kind << "and not"
                             << TARN_BROWSER_FACTORY;
        return nullptr;
    }
    auto* factory = qobject_cast<BrowserFactory*>(library.instance());
    if (!factory) {
        qWarning().noquote() << library.errorString();
        return nullptr;
    }
    return factory->createBrowser(parent);
}

} // namespace BrowserEngine
