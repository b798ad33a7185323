// SPDX-License-Identifier: MIT
#include "ui/window/start_up.h"

#include "common/data_path.h"
#include "common/platform.h"
#include "crash/crash_handler.h"
#include "ui/window/language.h"
#include "ui/window/options.h"
#include "web/browser_engine.h"
#include "widgets/message_box.h"

#include <QApplication>
#include <QFontDatabase>
#include <QIcon>
#include <QNetworkProxyFactory>
#include <QWidget>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace StartUp
{

void setAttributes()
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    BrowserEngine::prepare();
}

void dress(QApplication& application)
{
    Platform::useUtf8ForChildProcesses();
    // The boxes are on this network: a proxy would only be in the way.
    QNetworkProxyFactory::setUseSystemConfiguration(false);
    const int fontId =
        QFontDatabase::addApplicationFont(QStringLiteral(":/font/font/Cantarell-Regular-5.ttf"));
    QFont font = QApplication::font();
    font.setPixelSize(13); // as the style sheet: delegates paint with this one
    const QStringList families = QFontDatabase::applicationFontFamilies(fontId);
    if (!families.isEmpty())
        font.setFamilies(families);
    QApplication::setFont(font);
    application.setStyleSheet(QStringLiteral("file:///:/qss/spark.qss"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icon/icon/TH.ico")));
    QCoreApplication::setApplicationName(QStringLiteral("Tarn Hub"));
}

void installCrashHandler()
{
    CrashHandler::instance().setDumpFolder(dataPath(QStringLiteral("Dump")));
    CrashHandler::instance().install(applicationVersion());
}

void bringToFront(QWidget& window)
{
    window.setWindowState((window.windowState() & ~Qt::WindowMinimized) | Qt::WindowActive);
    window.show();
    window.raise();
    window.activateWindow();
}

void tellStuck()
{
    Language language(nullptr);
    language.chooseSystemLanguage();
    const QString text = QCoreApplication::translate(
        "StartUp", "Tarn Hub 已在运行，但没有响应。请等待片刻，或结束该进程后再启动。");
    std::fputs((text + QLatin1Char('\n')).toLocal8Bit().constData(), stderr);
    messageBox::tell(text, nullptr);
}

void limitEnd(int exitCode, int ms)
{
    std::thread([exitCode, ms] {
        std::this_thread::sleep_for(std::chrono::milliseconds(ms));
        std::_Exit(exitCode);
    }).detach();
}

} // namespace StartUp
