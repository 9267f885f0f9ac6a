#include "apps/desktop/actions.h"

#include "apps/desktop/text.h"

namespace desktop {

const std::vector<ActionRow>& actionRows() {
  static const std::vector<ActionRow> rows = {
      {Menu::file, u"&Nuovo", u"un disegno vuoto", "new", u"NEW", "", "Ctrl+N", true},
      {Menu::file, u"&Apri...", u"apre un disegno DXF", "open", u"OPEN", "", "Ctrl+O", true},
      {Menu::file, u"Apri &recente", u"i disegni aperti da ultimo", "", u"", "recent"},
      {Menu::file, u""},
      {Menu::file, u"&Salva", u"salva il disegno", "save", u"SAVE", "", "Ctrl+S", true},
      {Menu::file, u"Salva &con nome...", u"salva con un altro nome", "", u"SAVEAS", "",
       "Ctrl+Shift+S"},
      {Menu::file, u""},
      {Menu::file, u"&Importa INP...", u"disegna la rete di un file INP", "import", u"IMPINP", "",
       "Ctrl+I", true},
      {Menu::file, u"&Esporta INP...", u"scrive la rete in un file INP", "export", u"EXPINP", "",
       "Ctrl+E", true},
      {Menu::file, u"I&mmagine...", u"la vista in un file PNG, SVG o PDF", "picture", u"",
       "picture"},
      {Menu::file, u"S&tampa...", u"stampa la vista", "print", u"", "print", "Ctrl+P"},
      {Menu::file, u""},
      {Menu::file, u"&Esci", u"chiude il programma", "", u"QUIT", "", "Ctrl+Q"},

      {Menu::edit, u"&Annulla", u"annulla l'ultimo comando", "undo", u"UNDO", "", "Ctrl+Z", true},
      {Menu::edit, u"&Ripristina", u"ripristina il comando annullato", "redo", u"REDO", "",
       "Ctrl+Y", true},
      {Menu::edit, u""},
      {Menu::edit, u"&Cancella", u"cancella gli oggetti scelti", "erase", u"ERASE", "", "Del"},
      {Menu::edit, u"Sce&gli tutto", u"sceglie tutti gli oggetti visibili", "", u"", "selectAll",
       "Ctrl+A"},

      {Menu::view, u"&Estensioni", u"mostra tutto il disegno", "extents", u"", "extents", "Ctrl+0",
       true},
      {Menu::view, u"&Finestra", u"ingrandisce una finestra", "window", u"", "window", "", true},
      {Menu::view, u"&Precedente", u"torna alla vista precedente", "previous", u"", "previous",
       "Alt+Left", true},
      {Menu::view, u"&Ingrandisci", u"ingrandisce", "", u"", "in", "Ctrl++"},
      {Menu::view, u"&Rimpicciolisci", u"rimpicciolisce", "", u"", "out", "Ctrl+-"},
      {Menu::view, u""},
      {Menu::view, u"P&ianta", u"vista dall'alto", "plan", u"", "plan"},
      {Menu::view, u"&3D", u"vista dall'angolo; Maiusc e tasto centrale la girano", "orbit", u"",
       "orbit", "", true},
      {Menu::view, u""},
      {Menu::view, u"Fondo &scuro", u"fondo scuro o chiaro", "dark", u"", "dark"},
      {Menu::view, u"&Scritte", u"nomi e valori accanto ai simboli", "", u"", "labels"},
      {Menu::view, u"&Aggancio", u"aggancio a nodi, estremi, vertici", "snap", u"", "snap", "F3",
       true},
      {Menu::view, u"&Ortogonale", u"solo orizzontale o verticale", "ortho", u"", "ortho", "F8",
       true},

      {Menu::network, u"A&ggiungi...", u"aggiunge una rete o un elemento", "add", u"HNADDEPA", "",
       "", true},
      {Menu::network, u"&Modifica...", u"modifica un elemento della rete", "modify", u"HNMODEPA",
       "", "", true},
      {Menu::network, u"&Pozzetti...", u"porta i pozzetti da un profilo al modello", "",
       u"HNPZZPMOD"},

      {Menu::data, u"&Materiali...", u"modifica la tabella dei materiali", "materials",
       u"HNMATEPA"},
      {Menu::data, u"&Assegna materiale...", u"assegna un materiale alle condotte", "assign",
       u"HNSETMAT"},
      {Menu::data, u"Pattern e &curve...", u"gestisce pattern e curve", "patterns", u"HNSETPAT", "",
       "", true},

      {Menu::calculation, u"&Opzioni...", u"modifica le opzioni di calcolo della rete", "options",
       u"EPACALC", "", "", true},
      {Menu::calculation, u"&Calcola", u"calcola la rete con il solutore", "solve", u"", "solve",
       "F5", true},

      {Menu::results, u"&Importa risultati...", u"importa o cancella i risultati di un report RPT",
       "results", u"IMPRPT"},
      {Menu::results, u"Inte&rroga e colora...", u"interroga la rete e ne colora i risultati",
       "query", u"NETVIS", "", "", true},
      {Menu::results, u"&Tabelle...", u"disegna tabelle di dati e risultati", "tables",
       u"EPATABLES"},
      {Menu::results, u"&Profilo...", u"disegna un profilo longitudinale", "profile", u"EPAPROF",
       "", "", true},
      {Menu::results, u"Pie&zometrica 3D", u"disegna la piezometrica in 3D", "grade", u"EPAPIEZO"},

      {Menu::drawing, u"&Sposta", u"sposta oggetti", "move", u"MOVE"},
      {Menu::drawing, u"&Copia", u"copia oggetti", "copy", u"COPY"},
      {Menu::drawing, u"&Ruota", u"ruota oggetti", "rotate", u"ROTATE"},
      {Menu::drawing, u"S&cala", u"ingrandisce o riduce oggetti", "scale", u"SCALE"},
      {Menu::drawing, u"Scala dei sim&boli...", u"scala simboli e tabelle", "", u"EPASCALE"},
      {Menu::drawing, u""},
      {Menu::drawing, u"&Misura", u"misura una distanza", "measure", u"DIST", "", "", true},
      {Menu::drawing, u"&Elenca", u"dati degli oggetti scelti", "list", u"LIST"},

      {Menu::help, u"&Comandi", u"l'elenco dei comandi", "", u"HELP", "", "F1"},
      {Menu::help, u"&Informazioni", u"su questo programma", "", u"", "about"},
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
