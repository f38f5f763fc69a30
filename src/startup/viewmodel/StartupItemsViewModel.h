#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <QObject>
#include <QString>

#include "app/DebugLogger.h"
#include "app/ServiceHandle.h"
#include "startup/StartupItem.h"
#include "startup/StartupItemsServiceProtocol.h"
#include "startup/viewmodel/StartupItemsModel.h"

namespace halcyra::startup {

/// The startup items' flow: idle, a scan of both lists, the results with their switches.
/// Lives on the interface thread; scans and switches run on worker threads and come back
/// through queued calls that are dropped once this object is gone. Screens route on `phase`.
///
/// A switch moves only when its command has returned, and stays where it was when the command
/// could not be started. Each item can have one switch under way at a time.
class StartupItemsViewModel : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString phase READ phaseName NOTIFY phaseChanged)
  Q_PROPERTY(QString errorText READ errorText NOTIFY phaseChanged)
  Q_PROPERTY(QString scanStatus READ scanStatus NOTIFY scanStatusChanged)
  Q_PROPERTY(QString selectedCategory READ selectedCategoryName WRITE selectCategory NOTIFY selectedCategoryChanged)
  Q_PROPERTY(int loginItemCount READ loginItemCount NOTIFY itemsChanged)
  Q_PROPERTY(int launchAgentCount READ launchAgentCount NOTIFY itemsChanged)
  Q_PROPERTY(int enabledCount READ enabledCount NOTIFY itemsChanged)
  Q_PROPERTY(int totalCount READ totalCount NOTIFY itemsChanged)
  Q_PROPERTY(halcyra::startup::StartupItemsModel* currentItems READ currentItemsModel CONSTANT)

public:
  enum class Phase { idle, scanning, results, error };

  explicit StartupItemsViewModel(QObject* parent = nullptr);

  // State.
  Phase phase() const noexcept { return phase_; }
  QString phaseName() const;
  QString errorText() const { return errorText_; }
  QString scanStatus() const { return scanStatus_; }
  StartupItemCategory selectedCategory() const noexcept { return selectedCategory_; }
  QString selectedCategoryName() const;
  const std::vector<StartupItem>& loginItems() const noexcept { return loginItems_; }
  const std::vector<StartupItem>& launchAgents() const noexcept { return launchAgents_; }
  const std::set<std::string>& togglingItemIds() const noexcept { return togglingItemIds_; }

  // Derived.
  /// The list of the selected category.
  const std::vector<StartupItem>& currentItems() const;
  StartupItemsModel* currentItemsModel() const noexcept { return currentModel_; }
  int loginItemCount() const { return static_cast<int>(loginItems_.size()); }
  int launchAgentCount() const { return static_cast<int>(launchAgents_.size()); }
  /// Items switched on over both lists, whatever category is in view.
  int enabledCount() const;
  int totalCount() const { return loginItemCount() + launchAgentCount(); }

  // Operations.
  /// Scans both lists, login items first, and ends in `results`.
  void scan(std::shared_ptr<StartupItemsServiceProtocol> service, app::DebugLogger& logger);
  /// Flips the item as it stood when its switch was flipped. Nothing happens while that item's
  /// command is still running.
  void toggleItem(const StartupItem& item, std::shared_ptr<StartupItemsServiceProtocol> service,
                  app::DebugLogger& logger);
  void selectCategory(StartupItemCategory category);

  /// Back to an empty idle screen with the login items selected.
  Q_INVOKABLE void reset();
  /// Takes "loginItems" or "launchAgents"; any other name is ignored.
  Q_INVOKABLE void selectCategory(const QString& name);

  // The same operations as the screens call them, with the shared objects they hold.
  Q_INVOKABLE void scan(halcyra::app::ServiceHandle* service, halcyra::app::DebugLogger* logger);
  /// "Rescan" and the error's "Retry": `reset`, then a new scan.
  Q_INVOKABLE void rescan(halcyra::app::ServiceHandle* service, halcyra::app::DebugLogger* logger);
  /// The switch of the row with this id, in the list in view.
  Q_INVOKABLE void toggleItem(const QString& id, halcyra::app::ServiceHandle* service,
                              halcyra::app::DebugLogger* logger);

signals:
  void phaseChanged();
  void scanStatusChanged();
  void selectedCategoryChanged();
  void itemsChanged();

private:
  void setPhase(Phase phase);
  void setScanStatus(const QString& status);
  void showCurrentList();
  void finishToggle(const std::string& id);
  /// Sets the switch of the item with this id in its list; false when no list holds it.
  bool applyState(const StartupItem& item, bool isEnabled);
  static QString describe(std::exception_ptr error);

  Phase phase_ = Phase::idle;
  QString errorText_;
  QString scanStatus_;
  StartupItemCategory selectedCategory_ = StartupItemCategory::loginItems;
  std::vector<StartupItem> loginItems_;
  std::vector<StartupItem> launchAgents_;
  std::set<std::string> togglingItemIds_;
  StartupItemsModel* currentModel_;
  /// Raised by `reset`: a scan that started before it must not fill the lists.
  std::uint64_t generation_ = 0;
};

} // namespace halcyra::startup
