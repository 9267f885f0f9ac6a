#include "apps/desktop/actions.h"

#include "apps/desktop/text.h"

namespace desktop {

namespace {
constexpr int kNoKey = 0;
}

const std::vector<ActionRow>& actionRows() {
  static const std::vector<ActionRow> rows = {
      {Menu::file, "&Nuovo", "un disegno vuoto", "new", u"NEW", "",
       (Qt::CTRL | Qt::Key_N).toCombined(), true},
      {Menu::file, "&Apri...", "apre un disegno DXF", "open", u"OPEN", "",
       (Qt::CTRL | Qt::Key_O).toCombined(), true},
      {Menu::file, "Apri &recente", "i disegni aperti da ultimo", "", u"", "recent"},
      {Menu::file, ""},
      {Menu::file, "&Salva", "salva il disegno", "save", u"SAVE", "",
       (Qt::CTRL | Qt::Key_S).toCombined(), true},
      {Menu::file, "Salva &con nome...", "salva con un altro nome", "", u"SAVEAS", "",
       (Qt::CTRL | Qt::SHIFT | Qt::Key_S).toCombined()},
      {Menu::file, ""},
      {Menu::file, "&Importa INP...", "disegna la rete di un file INP", "import", u"IMPINP", "",
       (Qt::CTRL | Qt::Key_I).toCombined(), true},
      {Menu::file, "&Esporta INP...", "scrive la rete in un file INP", "export", u"EXPINP", "",
       (Qt::CTRL | Qt::Key_E).toCombined(), true},
      {Menu::file, "I&mmagine...", "la vista in un file PNG, SVG o PDF", "picture", u"", "picture"},
      {Menu::file, "S&tampa...", "stampa la vista", "print", u"", "print",
       (Qt::CTRL | Qt::Key_P).toCombined()},
      {Menu::file, ""},
      {Menu::file, "&Esci", "chiude il programma", "", u"QUIT", "",
       (Qt::CTRL | Qt::Key_Q).toCombined()},

      {Menu::edit, "&Annulla", "annulla l'ultimo comando", "undo", u"UNDO", "",
       (Qt::CTRL | Qt::Key_Z).toCombined(), true},
      {Menu::edit, "&Ripristina", "ripristina il comando annullato", "redo", u"REDO", "",
       (Qt::CTRL | Qt::Key_Y).toCombined(), true},
      {Menu::edit, ""},
      {Menu::edit, "&Cancella", "cancella gli oggetti scelti", "erase", u"ERASE", "",
       Qt::Key_Delete},
      {Menu::edit, "Sce&gli tutto", "sceglie tutti gli oggetti visibili", "", u"", "selectAll",
       (Qt::CTRL | Qt::Key_A).toCombined()},

      {Menu::view, "&Estensioni", "mostra tutto il disegno", "extents", u"", "extents",
       (Qt::CTRL | Qt::Key_0).toCombined(), true},
      {Menu::view, "&Finestra", "ingrandisce una finestra", "window", u"", "window", kNoKey, true},
      {Menu::view, "&Precedente", "torna alla vista precedente", "previous", u"", "previous",
       (Qt::ALT | Qt::Key_Left).toCombined(), true},
      {Menu::view, "&Ingrandisci", "ingrandisce", "", u"", "in",
       (Qt::CTRL | Qt::Key_Plus).toCombined()},
      {Menu::view, "&Rimpicciolisci", "rimpicciolisce", "", u"", "out",
       (Qt::CTRL | Qt::Key_Minus).toCombined()},
      {Menu::view, ""},
      {Menu::view, "P&ianta", "vista dall'alto", "plan", u"", "plan"},
      {Menu::view, "&3D", "vista dall'angolo; Maiusc e tasto centrale la girano", "orbit", u"",
       "orbit", kNoKey, true},
      {Menu::view, ""},
      {Menu::view, "Fondo &scuro", "fondo scuro o chiaro", "dark", u"", "dark"},
      {Menu::view, "&Scritte", "nomi e valori accanto ai simboli", "", u"", "labels"},
      {Menu::view, "&Aggancio", "aggancio a nodi, estremi, vertici", "snap", u"", "snap",
       Qt::Key_F3, true},
      {Menu::view, "&Ortogonale", "solo orizzontale o verticale", "ortho", u"", "ortho", Qt::Key_F8,
       true},

      {Menu::network, "A&ggiungi...", "aggiunge una rete o un elemento", "add", u"HNADDEPA", "",
       kNoKey, true},
      {Menu::network, "&Modifica...", "modifica un elemento della rete", "modify", u"HNMODEPA", "",
       kNoKey, true},
      {Menu::network, "&Pozzetti...", "porta i pozzetti da un profilo al modello", "",
       u"HNPZZPMOD"},

      {Menu::data, "&Materiali...", "modifica la tabella dei materiali", "materials", u"HNMATEPA"},
      {Menu::data, "&Assegna materiale...", "assegna un materiale alle condotte", "assign",
       u"HNSETMAT"},
      {Menu::data, "Pattern e &curve...", "gestisce pattern e curve", "patterns", u"HNSETPAT", "",
       kNoKey, true},

      {Menu::calculation, "&Opzioni...", "modifica le opzioni di calcolo della rete", "options",
       u"EPACALC", "", kNoKey, true},
      {Menu::calculation, "&Calcola", "calcola la rete con il solutore", "solve", u"", "solve",
       Qt::Key_F5, true},

      {Menu::results, "&Apri risultati...",
       "mostra nel tempo i risultati di un file OUT o RPT, senza scriverli nel disegno", "", u"",
       "openResults"},
      {Menu::results, "&Scrivi nel disegno...", "scrive sul disegno i risultati del calcolo", "",
       u"", "writeResults"},
      {Menu::results, "&Importa risultati...", "importa o cancella i risultati di un report RPT",
       "results", u"IMPRPT"},
      {Menu::results, "Inte&rroga e colora...", "interroga la rete e ne colora i risultati",
       "query", u"NETVIS", "", kNoKey, true},
      {Menu::results, "&Tabelle...", "disegna tabelle di dati e risultati", "tables", u"EPATABLES"},
      {Menu::results, "&Profilo...", "disegna un profilo longitudinale", "profile", u"EPAPROF", "",
       kNoKey, true},
      {Menu::results, "Pie&zometrica 3D", "disegna la piezometrica in 3D", "grade", u"EPAPIEZO"},

      {Menu::drawing, "&Sposta", "sposta oggetti", "move", u"MOVE"},
      {Menu::drawing, "&Copia", "copia oggetti", "copy", u"COPY"},
      {Menu::drawing, "&Ruota", "ruota oggetti", "rotate", u"ROTATE"},
      {Menu::drawing, "S&cala", "ingrandisce o riduce oggetti", "scale", u"SCALE"},
      {Menu::drawing, "Scala dei sim&boli...", "scala simboli e tabelle", "", u"EPASCALE"},
      {Menu::drawing, ""},
      {Menu::drawing, "&Misura", "misura una distanza", "measure", u"DIST", "", kNoKey, true},
      {Menu::drawing, "&Elenca", "dati degli oggetti scelti", "list", u"LIST"},

      {Menu::help, "&Comandi", "l'elenco dei comandi", "", u"HELP", "", Qt::Key_F1},
      {Menu::help, "&Informazioni", "su questo programma", "", u"", "about"},
  };
  return rows;
}

QString titleOf(Menu menu) {
  switch (menu) {
    case Menu::file:
      return words(u"&File");
    case Menu::edit:
      return words(u"&Modifica");
    case Menu::view:
      return words(u"&Vista");
    case Menu::network:
      return words(u"&Rete");
    case Menu::data:
      return words(u"&Dati");
    case Menu::calculation:
      return words(u"&Calcolo");
    case Menu::results:
      return words(u"Ri&sultati");
    case Menu::drawing:
      return words(u"Dise&gno");
    case Menu::help:
      break;
  }
  return words(u"&Guida");
}

}  // namespace desktop
