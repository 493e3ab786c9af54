// korvo-console: opens a project and lets a person, or a script, work with it line by line.
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <new>
#include <string>

#include "base/text.h"
#include "korvo/console/console.h"
#include "korvo/console/dialog_commands.h"
#include "korvo/console/terminal.h"
#include "korvo/host/project.h"
#include "korvo/words/options.h"

namespace {

using korvo::kExitNotStarted;
using namespace text::literals;

constexpr const char* kUsage =
    "Aufruf: korvo-console [Optionen] PROJEKT\n"
    "\n"
    "PROJEKT ist ein Ordner mit einer Punkttabelle (punkte.dbf, sonst die einzige *.dbf\n"
    "mit der Spalte PT_NO) oder die Punkttabelle selbst.\n"
    "\n"
    "  --plugin PFAD    Bibliothek des Moduls; sonst libpkt_aus.so neben dem Programm\n"
    "  --clock ZEIT     die Uhr steht auf JJJJ-MM-TTThh:mm:ss (Ortszeit)\n"
    "  --zone NAME      Zeitzone dieser Uhr, wie Europe/Berlin\n"
    "  --script DATEI   Befehle aus einer Datei statt von der Tastatur\n"
    "  --help           diese Hilfe\n"
    "\n"
    "Der Befehl hilfe zeigt, was gerade möglich ist. Ein Skript enthält dieselben Befehle,\n"
    "einen in jeder Zeile; leere Zeilen und Zeilen mit # am Anfang zählen nicht. Vor einer\n"
    "Meldung muss darin stehen: erwarte TEXT. Passt ein Befehl nicht zu dem, was gerade\n"
    "offen ist, erscheint eine andere Meldung oder endet das Skript zu früh, so endet das\n"
    "Programm mit einer Nachricht und dem Wert 2. Der Wert 1 heißt: nicht gestartet,\n"
    "3: Der Arbeitsspeicher reicht nicht aus.\n";

struct Options {
  bool help = false;
  std::string plugin;
  std::string clock;
  std::string zone;
  std::string script;
  std::string project;
};

int Fail(const std::string& utf8) {
  std::fprintf(stderr, "korvo-console: %s\n", utf8.c_str());
  return kExitNotStarted;
}

/// What is wrong with the arguments; empty for nothing.
std::string Parse(int count, char** arguments, Options* options) {
  std::string wrong = korvo::ReadCommandLine(count, arguments,
                                             {{{"--plugin", &options->plugin},
                                               {"--clock", &options->clock},
                                               {"--zone", &options->zone},
                                               {"--script", &options->script}},
                                              {{"--help", &options->help}},
                                              &options->project});
  if (!wrong.empty() || options->help) return wrong;
  if (options->project.empty()) return "Es fehlt das Projekt; --help zeigt die Hilfe.";
  if (options->clock.empty() && !options->zone.empty()) return "--zone geht nur zusammen mit --clock.";
  return {};
}

int Work(int count, char** arguments) {
  if (!korvo::HoldStandardStreams()) return kExitNotStarted;
  Options options;
  const std::string wrong = Parse(count, arguments, &options);
  if (!wrong.empty()) return Fail(wrong);
  if (options.help) {
    std::fputs(kUsage, stdout);
    return 0;
  }
  std::unique_ptr<platform::Clock> standing;
  if (!options.clock.empty()) {
    standing.reset(platform::NewStandingClock(options.clock.c_str(), options.zone.c_str()));
    if (standing == nullptr) return Fail("--clock oder --zone ist nicht zu verstehen; --help zeigt die Form.");
  }
  const auto close = [](std::FILE* file) { std::fclose(file); };
  std::unique_ptr<std::FILE, decltype(close)> script(nullptr, close);
  if (!options.script.empty()) {
    script.reset(std::fopen(options.script.c_str(), "rbe"));
    if (script == nullptr) return Fail("Das Skript " + options.script + " lässt sich nicht öffnen.");
  }
  const bool person = script == nullptr && isatty(STDIN_FILENO) != 0;
  korvo::Terminal terminal(script != nullptr ? script.get() : stdin, person);
  korvo::Console console(terminal, standing != nullptr ? *standing : platform::SystemClock());
  korvo::SetFrontEnd(&console);

  const korvo::OpenedProject opened = korvo::OpenProject(options.project);
  if (!opened.open) return Fail(text::ToUtf8(opened.refusal));
  if (!opened.note.empty()) terminal.SayLines(opened.note, "! ");
  console.RunTopLevel(options.plugin.empty() ? korvo::PluginBesideProgram() : options.plugin);
  korvo::CloseProject();
  korvo::SetFrontEnd(nullptr);
  return std::fflush(stdout) == 0 ? 0 : Fail("Die Ausgabe ließ sich nicht schreiben.");
}

}  // namespace

int main(int count, char** arguments) {
  try {
    return Work(count, arguments);
  } catch (const std::bad_alloc&) {
    // Words that need no memory.
    std::fputs("korvo-console: Der Arbeitsspeicher reicht nicht aus.\n", stderr);
    return korvo::kExitNoMemory;
  }
}
