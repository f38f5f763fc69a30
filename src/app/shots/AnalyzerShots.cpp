#include "AnalyzerShots.h"

#include <initializer_list>

#include "core/Uuid.h"

namespace halcyra::app {
namespace {

using analyzer::DirectoryNode;
using analyzer::DiskAnalyzerScanResult;
using analyzer::DiskAnalyzerViewModel;
using analyzer::LargestFileEntry;

constexpr std::int64_t MB = 1000 * 1000;

/// A folder holding `ownBytes` in its own files and the given sub-folders; paths come later.
DirectoryNode folder(const char* name, std::int64_t ownBytes, std::initializer_list<DirectoryNode> children = {}) {
  DirectoryNode node;
  node.id = core::makeUuid();
  node.name = name;
  node.size = ownBytes;
  node.fileCount = ownBytes > 0 ? 3 : 0;
  for (const auto& child : children) {
    node.size += child.size;
    node.children.push_back(child);
  }
  return node;
}

void placeUnder(DirectoryNode& node, const std::string& parentPath) {
  node.path = parentPath + "/" + node.name;
  for (auto& child : node.children) placeUnder(child, node.path);
}

LargestFileEntry file(const char* path, std::int64_t size) {
  const std::string text = path;
  return {core::makeUuid(), text, text.substr(text.rfind('/') + 1), size};
}

/// A home folder as people have them: a few heavy folders, a long tail of small ones.
DiskAnalyzerScanResult sampleHome() {
  DiskAnalyzerScanResult result;
  result.root = folder("sam", 24 * MB,
      {folder("Library", 310 * MB,
              {folder("Application Support", 900 * MB,
                      {folder("Google", 3200 * MB), folder("Slack", 2100 * MB), folder("Code", 1400 * MB),
                       folder("Spotify", 800 * MB), folder("zoom.us", 420 * MB), folder("Firefox", 380 * MB)}),
               folder("Developer", 0,
                      {folder("Xcode", 0, {folder("DerivedData", 6100 * MB), folder("Archives", 2000 * MB)}),
                       folder("CoreSimulator", 3100 * MB)}),
               folder("Containers", 9600 * MB), folder("Caches", 7900 * MB), folder("Mail", 900 * MB),
               folder("Logs", 200 * MB)}),
       folder("Movies", 0, {folder("Final Cut Projects", 24'000 * MB), folder("Screen Recordings", 7400 * MB)}),
       folder("Music", 12'800 * MB), folder("Pictures", 200 * MB, {folder("Photos Library.photoslibrary", 9100 * MB)}),
       folder("Projects", 900 * MB, {folder("halcyra", 3100 * MB), folder("website", 2700 * MB)}),
       folder("Documents", 5900 * MB), folder("Downloads", 4200 * MB), folder("Desktop", 1100 * MB),
       folder(".npm", 940 * MB), folder(".docker", 600 * MB), folder(".vscode", 210 * MB), folder(".cache", 310 * MB),
       folder(".Trash", 280 * MB), folder(".config", 45 * MB), folder("Public", 12'000), folder(".ssh", 8000)});
  placeUnder(result.root, "/Users");
  result.totalSize = result.root.size;
  result.fileCount = 152'340;
  result.directoryCount = 28'117;
  result.duration = 6.2;
  result.largestFiles = {
      file("/Users/sam/Movies/Final Cut Projects/Trip.fcpbundle/Render Files/render-0001.mov", 6'400 * MB),
      file("/Users/sam/Library/Containers/com.docker.docker/Data/vms/0/data/Docker.raw", 5'200 * MB),
      file("/Users/sam/Movies/Screen Recordings/Keynote rehearsal.mov", 3'900 * MB),
      file("/Users/sam/Downloads/ubuntu-24.04-desktop-amd64.iso", 2'900 * MB),
      file("/Users/sam/Movies/Final Cut Projects/Trip.fcpbundle/Original Media/A001.mov", 2'300 * MB),
      file("/Users/sam/Library/Developer/CoreSimulator/Caches/dyld/runtime.dylib", 1'100 * MB),
      file("/Users/sam/Music/Library/Live at the Hall.flac", 940 * MB),
      file("/Users/sam/Documents/Archive/Taxes 2019-2023.zip", 610 * MB),
      file("/Users/sam/Library/Application Support/Google/Chrome/Default/History", 402 * MB),
      file("/Users/sam/Desktop/Presentation final v3.key", 380 * MB),
  };
  return result;
}

} // namespace

std::shared_ptr<ScriptedDiskAnalyzerService> scriptedDiskAnalyzer() {
  auto service = std::make_shared<ScriptedDiskAnalyzerService>();
  service->setResult(sampleHome());
  return service;
}

void shootDiskAnalyzer(HalcyraApp& app, ScriptedDiskAnalyzerService& service,
                       const std::function<void(const QString& name)>& shot,
                       const std::function<bool(const std::function<bool()>&)>& waitFor,
                       const std::function<void(const QString& problem)>& fail) {
  auto& viewModel = app.diskAnalyzerViewModel();
  auto& logger = app.debugLogger();
  const auto engine = std::shared_ptr<analyzer::DiskAnalyzerServiceProtocol>(&service, [](auto*) {});
  const auto reach = [&](DiskAnalyzerViewModel::Phase phase, const char* what) {
    if (!waitFor([&] { return viewModel.phase() == phase; })) fail(QStringLiteral("analyzer: ") + what);
  };
  const auto idOf = [&](const char* name) {
    for (const DirectoryNode* child : viewModel.displayChildren()) {
      if (child->name == name) return QString::fromStdString(child->id);
    }
    fail(QStringLiteral("analyzer: no row named ") + QString::fromLatin1(name));
    return QString();
  };

  app.appState().setSelectedNavItem(NavigationItem::diskAnalyzer);
  shot(QStringLiteral("analyzer-1-idle"));

  service.holdNext();
  viewModel.scan(QStringLiteral("/Users/sam"), engine, logger);
  if (!waitFor([&] { return !viewModel.scanStatus().isEmpty(); })) {
    fail(QStringLiteral("analyzer: the scan reported no status"));
  }
  shot(QStringLiteral("analyzer-2-scanning"));
  service.release();
  reach(DiskAnalyzerViewModel::Phase::results, "the scan did not reach the results");
  shot(QStringLiteral("analyzer-3-treemap"));

  viewModel.toggleSelection(idOf("Movies"));
  viewModel.toggleSelection(idOf("Downloads"));
  shot(QStringLiteral("analyzer-4-marked"));

  // Two levels down: the breadcrumb grows, the marks stay.
  viewModel.drillInto(idOf("Library"));
  viewModel.drillInto(idOf("Application Support"));
  shot(QStringLiteral("analyzer-5-drilled"));
  viewModel.navigateToRoot();

  viewModel.setSelectedTab(viewModel.tabs().at(1));
  shot(QStringLiteral("analyzer-6-largest-files"));
  viewModel.setSelectedTab(viewModel.tabs().at(0));

  viewModel.requestDelete();
  shot(QStringLiteral("analyzer-7-confirming"));
  viewModel.cancelDelete();

  service.failNextScan();
  viewModel.rescan(engine, logger);
  reach(DiskAnalyzerViewModel::Phase::error, "a failed scan did not show the error");
  shot(QStringLiteral("analyzer-8-error"));
  viewModel.reset();
}

} // namespace halcyra::app
