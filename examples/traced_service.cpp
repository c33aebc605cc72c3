// A service that reads requests and traces its work. Three components are traced, so that an operator can
// look at one of them alone. Environment variables switch the trace on, without a new build:
//
//   SERVICE_TRACE_ACTIVE=yes SERVICE_TRACE_FILE=service.trc example_traced_service < requests
//   SERVICE_TRACE_FILE=service.trc example_traced_service -show -components 3
#include <vel.h>

#include <iostream>
#include <map>
#include <sstream>
#include <string>

namespace {

/// The components of the trace. 0 would pass every filter.
enum Component : unsigned short { kService = 1, kParser = 2, kStore = 3 };
enum ExitCode : int { kServed = 0, kBadRequests = 1, kNoTrace = 2 };

void traceText(Component component, const char* origin, const char* message, const std::string& text) {
  velTraceDump(VelEnTraceDetail::LOW, component, VelEnTraceDataType::C_STRING, origin, message, text.data(),
               text.size());
}

class Store {
 public:
  void put(const std::string& key, long value) {
    const VelClTraceFunction function(VelEnTraceDetail::LOW, kStore, __func__);
    values_[key] = value;
    velTraceValue(VelEnTraceDetail::MEDIUM, kStore, __func__, "keys in the store", values_.size());
  }
  const long* get(const std::string& key) const {
    const VelClTraceFunction function(VelEnTraceDetail::LOW, kStore, __func__);
    const auto found = values_.find(key);
    velTraceValue(VelEnTraceDetail::LOW, kStore, __func__, "found", found != values_.end());
    return found == values_.end() ? nullptr : &found->second;
  }

 private:
  std::map<std::string, long> values_;
};

struct Request {
  std::string verb, key;
  long value = 0;
};

/// Parses "put KEY NUMBER" and "get KEY".
bool parse(const std::string& line, Request& request) {
  const VelClTraceFunction function(VelEnTraceDetail::LOW, kParser, __func__);
  std::istringstream words(line);
  std::string rest;
  words >> request.verb >> request.key;
  if (request.verb == "put") words >> request.value;
  if (words && !(words >> rest) && (request.verb == "put" || request.verb == "get")) return true;
  traceText(kParser, __func__, "refused", line);
  return false;
}

/// Serves requests until the input ends. Returns how many were refused.
unsigned int serve(std::istream& in, std::ostream& out) {
  const VelClTraceFunction function(VelEnTraceDetail::LOW, kService, __func__);
  Store store;
  unsigned int refused = 0;
  for (std::string line; std::getline(in, line);) {
    traceText(kService, __func__, "request", line);
    Request request;
    if (!parse(line, request)) {
      ++refused;
      out << "error\n";
    } else if (request.verb == "put") {
      store.put(request.key, request.value);
      out << "ok\n";
    } else if (const long* const value = store.get(request.key)) {
      out << *value << '\n';
    } else {
      out << "none\n";
    }
  }
  velTraceValue(VelEnTraceDetail::LOW, kService, __func__, "requests refused", refused);
  return refused;
}

/// Formats the trace of an earlier run.
ExitCode show(const VelClConsoleUI& ui) {
  const VelClTraceEnvironment environment("service", nullptr, true);
  VelClTraceFilter filter;
  filter.setDetail(VelEnTraceDetail::HIGH);
  const char* components = "*";
  if (ui.hasArgString("components", components)) filter.disableAllComponentIds();
  filter.enableComponentIds(components);
  VelClTraceFormatter formatter(environment, &filter);
  formatter.setFormatString("%f: %x %m %d%n");
  formatter.setDisplayIndentation("  ");
  try {
    formatter.format(std::cout);
    return kServed;
  } catch (const VelClException& exception) {
    // What precedes the damage has been shown.
    std::cout.flush();
    ui.exception(exception, "The trace cannot be read to its end");
    ui.processExit(kNoTrace);
  }
}

}  // namespace

int main(int argc, char** argv) {
  VelClConsoleUI ui(argc, argv);
  ui.useConventions({.version = "1.0"});
  ui.init("Traced service", "stores numbers under keys", "1.0", "Nov 22 2026");
  ui.handleUsageHelp("[-show [(-components <list>)]]",
                     "-show               show the trace of an earlier run\n"
                     "-components <list>  only these: 1 is the service, 2 the parser, 3 the store");
  if (ui.hasArgSwitch("show")) return show(ui);
  velTraceCreateInstance("service", nullptr);
  const unsigned int refused = serve(std::cin, std::cout);
  // Saves what is left in the ring. The end of the process would do so as well.
  velTraceDeleteInstance();
  return refused == 0 ? kServed : kBadRequests;
}
