#include "bench/Ratio.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <utility>

#include <benchmark/benchmark.h>
#include <unistd.h>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace snaplift::bench {
namespace {

constexpr std::size_t fewestTimings = 7;
constexpr const char* defaultArguments[] = {"--benchmark_repetitions=15",
                                            "--benchmark_enable_random_interleaving=true"};

class Collector : public benchmark::BenchmarkReporter {
public:
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Iteration && !run.error_occurred) {
        m_timings[run.run_name.function_name].push_back(run.real_accumulated_time);
      }
    }
  }
  const std::map<std::string, std::vector<double>>& timings() const { return m_timings; }

private:
  std::map<std::string, std::vector<double>> m_timings;
};

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

std::string number(double value, int decimals, const std::string& unit = {}) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*f%s", decimals, value, unit.c_str());
  return text;
}

// The printed table: left-aligned names, right-aligned figures.
class Table {
public:
  void add(std::vector<std::string> row) {
    m_widths.resize(std::max(m_widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) {
      m_widths[i] = std::max(m_widths[i], static_cast<int>(row[i].size()));
    }
    m_rows.push_back(std::move(row));
  }
  void print() const {
    for (const auto& row : m_rows) {
      for (std::size_t i = 0; i < row.size(); ++i) {
        std::printf("%s%*s", i == 0 ? "" : "  ", i == 0 ? -m_widths[i] : m_widths[i],
                    row[i].c_str());
      }
      std::printf("\n");
    }
  }

private:
  std::vector<std::vector<std::string>> m_rows;
  std::vector<int> m_widths;
};

}  // namespace

Group::Group(std::string name, PageCache pageCache)
    : m_name(std::move(name)), m_pageCache(pageCache) {}

Group& Group::beforeEach(std::function<void()> setUp) {
  m_setUp = std::move(setUp);
  return *this;
}

Group& Group::floor(std::string name, Job job, std::function<void()> setUp) {
  m_variants.insert(m_variants.begin(), {std::move(name), 0, std::move(job), std::move(setUp)});
  return *this;
}

Group& Group::subject(std::string name, double bar, Job job, std::function<void()> setUp) {
  m_variants.push_back({std::move(name), bar, std::move(job), std::move(setUp)});
  return *this;
}

double Group::secondsOf(Variant& variant) const {
  for (const auto& setUp : {m_setUp, variant.setUp}) {
    if (setUp) {
      setUp();
    }
  }
#ifdef __GLIBC__
  // What earlier jobs freed goes back to the system. A program that does its job once pays for its
  // memory page by page, and that is half of the time that reading a file takes.
  malloc_trim(0);
#endif
  const auto start = std::chrono::steady_clock::now();
  const bool isRight = variant.job();
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
  return isRight ? time.count() : -1;
}

Group& Ratios::group(std::string name, PageCache pageCache) {
  m_groups.emplace_back(new Group(std::move(name), pageCache));
  return *m_groups.back();
}

void Ratios::figure(std::string name, std::string unit, double bar,
                    std::function<double()> measure) {
  m_figures.push_back({std::move(name), std::move(unit), bar, std::move(measure)});
}

int Ratios::run(int argc, char** argv) {
  std::vector<char*> arguments(argv, argv + argc);
  for (const char* argument : defaultArguments) {  // before the user's, which win
    arguments.insert(arguments.begin() + 1, const_cast<char*>(argument));
  }
  int count = static_cast<int>(arguments.size());
  arguments.push_back(nullptr);
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
    return 2;
  }

  Table table;
  table.add({"", "measured", "floor", "ratio", "bar", "page cache", ""});
  for (const Figure& figure : m_figures) {
    table.add(rowOf(figure));
  }
  for (const auto& group : m_groups) {
    registerVariants(*group);
  }
  ::sync();  // or what was written to be measured, and deleted before, takes a processor meanwhile
  Collector collector;
  if (!m_groups.empty()) {  // the library takes none for a mistake
    benchmark::RunSpecifiedBenchmarks(&collector);
  }
  for (const auto& group : m_groups) {
    for (Row& row : rowsOf(*group, collector.timings())) {
      table.add(std::move(row));
    }
  }
  table.print();
  return m_isGood ? 0 : 1;
}

void Ratios::registerVariants(Group& group) {
  for (Group::Variant& variant : group.m_variants) {
    const std::string name = group.fullNameOf(variant);
    const auto time = [this, &group, &variant, name](benchmark::State& state) {
      if (!variant.isWarm) {
        variant.isWarm = true;
        group.secondsOf(variant);
      }
      for (auto _ : state) {
        const double seconds = group.secondsOf(variant);
        if (seconds < 0) {
          if (!std::exchange(variant.isWrong, true)) {
            std::fprintf(stderr, "%s: wrong result\n", name.c_str());
          }
          m_isGood = false;
          state.SkipWithError("wrong result");
          break;
        }
        state.SetIterationTime(seconds);
      }
    };
    benchmark::RegisterBenchmark(name.c_str(), time)->UseManualTime()->Iterations(1);
  }
}

std::vector<Ratios::Row> Ratios::rowsOf(const Group& group, const Timings& timings) {
  std::vector<Row> rows;
  double floor = 0;
  for (const Group::Variant& variant : group.m_variants) {
    const auto found = timings.find(group.fullNameOf(variant));
    if (found == timings.end()) {
      return {};
    }
    if (found->second.size() < fewestTimings) {
      std::fprintf(stderr, "%s: too few timings for a median\n", found->first.c_str());
      m_isGood = false;
      return {};
    }
    const double seconds = median(found->second);
    if (&variant == &group.m_variants.front()) {
      floor = seconds;
      continue;
    }
    rows.push_back({found->first, number(seconds * 1e3, 2, " ms"), number(floor * 1e3, 2, " ms"),
                    number(seconds / floor, 2), number(variant.bar, 2),
                    group.m_pageCache == PageCache::Hot ? "hot" : "cold",
                    verdict(seconds / floor, variant.bar)});
  }
  return rows;
}

Ratios::Row Ratios::rowOf(const Figure& figure) {
  const double value = figure.measure();
  return {figure.name, number(value, 1, " " + figure.unit), "", "", number(figure.bar, 1),
          "",          verdict(value, figure.bar)};
}

std::string Ratios::verdict(double value, double bar) {
  if (value <= bar) {
    return "ok";
  }
  m_isGood = false;
  return "MISSED";
}

}  // namespace snaplift::bench
