// korvo: opens a project in a window, in which a person works with it.
#include <QApplication>
#include <QFile>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "korvo/desktop/application.h"
#include "korvo/desktop/bench.h"
#include "korvo/desktop/desktop_front_end.h"
#include "korvo/desktop/main_window.h"
#include "korvo/host/project.h"
#include "korvo/words/options.h"

namespace {

constexpr int kExitNotStarted = 1;
constexpr int kExitNoScreen = 3;

constexpr const char* kUsage =
    "Aufruf: korvo [Optionen] [PROJEKT]\n"
    "\n"
    "PROJEKT ist ein Ordner mit einer Punkttabelle (punkte.dbf, sonst die einzige *.dbf\n"
    "mit der Spalte PT_NO) oder die Punkttabelle selbst. Ohne PROJEKT öffnet sich ein\n"
    "leeres Fenster; Projekte öffnet man darin mit Strg+O.\n"
    "\n"
    "  --plugin PFAD    Bibliothek des Moduls; sonst libpkt_aus.so neben dem Programm\n"
    "  --clock ZEIT     die Uhr steht auf JJJJ-MM-TTThh:mm:ss (Ortszeit)\n"
    "  --zone NAME      Zeitzone dieser Uhr, wie Europe/Berlin\n"
    "  --bench          misst die Karte mit 100 000 Punkten und zeigt die Zahlen\n"
    "  --help           diese Hilfe\n"
    "\n"
    "Ohne Bildschirm geht dieselbe Arbeit in korvo-console; das Programm endet dann mit 3.\n";

struct Options {
  bool help = false;
  bool bench = false;
  std::string plugin;
  std::string clock;
  std::string zone;
  std::string project;
};

int Fail(const std::string& utf8) {
  std::fprintf(stderr, "korvo: %s\n", utf8.c_str());
  return kExitNotStarted;
}

/// The toolkit ends the program where it finds no screen; this ends it in our words.
void EndWithoutScreen(QtMsgType type, const QMessageLogContext& /*context*/, const QString& /*text*/) {
  if (type != QtFatalMsg) return;
  Fail("Kein Bildschirm antwortet. Ohne ihn geht dieselbe Arbeit in korvo-console.");
  std::_Exit(kExitNoScreen);
}

}  // namespace

int main(int count, char** arguments) {
  if (!korvo::HoldStandardStreams()) return kExitNotStarted;
  Options options;
  const std::string wrong =
      korvo::ReadCommandLine(count, arguments,
                             {{{"--plugin", &options.plugin}, {"--clock", &options.clock}, {"--zone", &options.zone}},
                              {{"--help", &options.help}, {"--bench", &options.bench}},
                              &options.project});
  if (!wrong.empty()) return Fail(wrong);
  if (options.help) {
    std::fputs(kUsage, stdout);
    return 0;
  }
  if (options.clock.empty() && !options.zone.empty()) return Fail("--zone geht nur zusammen mit --clock.");
  std::unique_ptr<platform::Clock> standing;
  if (!options.clock.empty()) {
    standing.reset(platform::NewStandingClock(options.clock.c_str(), options.zone.c_str()));
    if (standing == nullptr) return Fail("--clock oder --zone ist nicht zu verstehen; --help zeigt die Form.");
  }
  // What is left for the toolkit is the program's name alone: its own options are not those of a surveyor.
  int own = 1;
  qInstallMessageHandler(EndWithoutScreen);
  QApplication application(own, arguments);
  qInstallMessageHandler(nullptr);
  korvo::SetUpApplication(application);
  if (options.bench) return korvo::RunBench();

  korvo::Waits waits;
  korvo::MainWindow window(waits, options.plugin.empty() ? korvo::PluginBesideProgram() : options.plugin);
  korvo::DesktopFrontEnd front_end(window, waits, standing != nullptr ? *standing : platform::SystemClock());
  korvo::SetFrontEnd(&front_end);
  QObject::connect(&window, &korvo::MainWindow::Closed, &application, &QApplication::quit, Qt::QueuedConnection);
  window.show();
  window.edge().Run([&] {
    if (!options.project.empty()) window.Open(QFile::decodeName(options.project.c_str()));
  });
  const int result = QApplication::exec();
  korvo::CloseProject();
  korvo::SetFrontEnd(nullptr);
  return result;
}
