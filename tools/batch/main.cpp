// brellian-batch: print a batch of cards as one job per card, each card exactly once.
// Copyright 2026 The rastertobrellian authors.
#include <getopt.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "tools/batch/batch_run.h"
#include "brellian_version.h"

static const char USAGE[] =
    "Usage: brellian-batch -d DEST [options] DOCUMENT...\n"
    "Print a batch of cards as one job per card, each card exactly once, to a CUPS\n"
    "queue or an IPP printer (such as brellian-printer-app).\n"
    "\n"
    "DEST is a CUPS queue name or a printer URI (ipp://HOST:PORT/ipp/print/NAME).\n"
    "One DOCUMENT holds every card, --pages-per-card pages each, in order (a PDF,\n"
    "e.g. a mail merge); several DOCUMENTs are one card each (PDF, PNG, JPEG, PWG\n"
    "raster). A printer that takes no PDF gets each card's pages as PWG raster.\n"
    "\n"
    "Options:\n"
    "  -d, --dest DEST          the queue or printer URI (required)\n"
    "  -n, --pages-per-card N   pages of each card (default 1, or 2 when the options\n"
    "                           ask for two-sided cards)\n"
    "      --csv FILE           per-card options, one row per card after a header row\n"
    "                           naming the columns: a column named after a job\n"
    "                           option or IPP attribute sets it for that card;\n"
    "                           track1, track2, track3 set the magnetic tracks\n"
    "                           (formats ISO6-79, ISO4-37, ISO4-104, or from the\n"
    "                           columns track1-format ...); document names the card's\n"
    "                           own file; an empty cell leaves the option out\n"
    "  -o NAME=VALUE            a job option of every card, as with lp\n"
    "      --cards N            the number of cards, when it cannot be counted\n"
    "  -t, --title TEXT         first part of each job's name (default: the file name)\n"
    "      --journal FILE       the batch's journal (default: the CSV file, else the\n"
    "                           first document, with .journal added)\n"
    "      --resume             go on with the batch of the journal: cards printed or\n"
    "                           sent before are not sent again\n"
    "      --retry-failed       with --resume: print aborted and cancelled cards again\n"
    "      --no-wait            end at a printer fault instead of waiting\n"
    "      --dry-run            list the cards, their pages and options; send nothing\n"
    "      --ahead N            jobs sent ahead of the one printing (default 1)\n"
    "      --poll-interval MS   time between two looks at the printer (default 1000)\n"
    "  -h, --help               show this text\n"
    "  -V, --version            show the version\n"
    "\n"
    "Exit status: 0 every card printed; 1 some card's job was aborted, cancelled\n"
    "or is unconfirmed; 2 bad arguments, input or journal; 3 the printer stopped\n"
    "or cannot be reached (--no-wait); 4 stopped with Ctrl-C; 5 the journal could\n"
    "not be written.\n";

// 'Batch_Usage()' - A usage error: the message and a hint, status 2.
static int Batch_Usage(const std::string& message) {
  fprintf(stderr, "brellian-batch: %s (--help shows the usage)\n", message.c_str());
  return BATCH_EXIT_USAGE;
}

// 'Batch_Number()' - A whole number from min to max, or -1.
static long Batch_Number(const char* text, long min, long max) {
  char* end = nullptr;
  long v = strtol(text, &end, 10);
  return (end == text || *end || v < min || v > max) ? -1 : v;
}

// 'Batch_OnInterrupt()' - SIGINT: ask what to do at the next look.
static void Batch_OnInterrupt(int) { g_batchInterrupted = 1; }

int main(int argc, char** argv) {
  enum { OPT_CSV = 256, OPT_CARDS, OPT_JOURNAL, OPT_RESUME, OPT_RETRY, OPT_NOWAIT, OPT_DRY, OPT_AHEAD, OPT_POLL };
  static const struct option kOptions[] = {
      {"dest", required_argument, nullptr, 'd'},        {"pages-per-card", required_argument, nullptr, 'n'},
      {"csv", required_argument, nullptr, OPT_CSV},     {"cards", required_argument, nullptr, OPT_CARDS},
      {"title", required_argument, nullptr, 't'},       {"journal", required_argument, nullptr, OPT_JOURNAL},
      {"resume", no_argument, nullptr, OPT_RESUME},     {"retry-failed", no_argument, nullptr, OPT_RETRY},
      {"no-wait", no_argument, nullptr, OPT_NOWAIT},    {"dry-run", no_argument, nullptr, OPT_DRY},
      {"ahead", required_argument, nullptr, OPT_AHEAD}, {"poll-interval", required_argument, nullptr, OPT_POLL},
      {"help", no_argument, nullptr, 'h'},              {"version", no_argument, nullptr, 'V'},
      {nullptr, 0, nullptr, 0}};
  TBatchOptions opt;
  int c;
  long v;
  while ((c = getopt_long(argc, argv, "d:n:o:t:hV", kOptions, nullptr)) != -1) {
    switch (c) {
      case 'd': opt.dest = optarg; break;
      case 'n':
        if ((v = Batch_Number(optarg, 1, 16)) < 0) return Batch_Usage("--pages-per-card takes 1 to 16");
        opt.input.pagesPerCard = static_cast<int32_t>(v);
        break;
      case 'o': {
        const char* eq = strchr(optarg, '=');
        if (!eq || eq == optarg) return Batch_Usage(std::string("-o takes NAME=VALUE, not \"") + optarg + "\"");
        opt.input.options.push_back({std::string(optarg, static_cast<size_t>(eq - optarg)), eq + 1});
        break;
      }
      case OPT_CSV: opt.input.csv = optarg; break;
      case OPT_CARDS:
        if ((v = Batch_Number(optarg, 1, 1000000)) < 0) return Batch_Usage("--cards takes 1 to 1000000");
        opt.input.cards = static_cast<int32_t>(v);
        break;
      case 't': opt.title = optarg; break;
      case OPT_JOURNAL: opt.journal = optarg; break;
      case OPT_RESUME: opt.resume = true; break;
      case OPT_RETRY: opt.retryFailed = true; break;
      case OPT_NOWAIT: opt.noWait = true; break;
      case OPT_DRY: opt.dryRun = true; break;
      case OPT_AHEAD:
        if ((v = Batch_Number(optarg, 0, 100)) < 0) return Batch_Usage("--ahead takes 0 to 100");
        opt.ahead = static_cast<int32_t>(v);
        break;
      case OPT_POLL:
        if ((v = Batch_Number(optarg, 10, 600000)) < 0) return Batch_Usage("--poll-interval takes 10 to 600000 ms");
        opt.pollMs = static_cast<int32_t>(v);
        break;
      case 'h': fputs(USAGE, stdout); return 0;
      case 'V': printf("brellian-batch %s\n", BRELLIAN_VERSION); return 0;
      default: return Batch_Usage("unknown option");
    }
  }
  for (int i = optind; i < argc; ++i) opt.input.documents.push_back(argv[i]);
  if (opt.dest.empty()) return Batch_Usage("no destination: give -d QUEUE or -d ipp://...");
  if (opt.retryFailed && !opt.resume) return Batch_Usage("--retry-failed goes with --resume");
  if (opt.title.empty()) {
    const std::string& base = !opt.input.documents.empty() ? opt.input.documents[0] : opt.input.csv;
    opt.title = base.substr(base.rfind('/') + 1);
  }
  struct sigaction sa = {};
  sa.sa_handler = Batch_OnInterrupt;
  sigaction(SIGINT, &sa, nullptr);
  signal(SIGPIPE, SIG_IGN);
  return Batch_Run(opt);
}
