#pragma once

#include <memory>
#include <typeindex>
#include <typeinfo>

#include <QObject>

namespace halcyra::app {

/// A service as the screens see it: an object they can pass back to a view model's operation,
/// which takes the service itself out again. Engines stay plain C++; only this handle is a
/// QObject. `get` checks the type, so a screen that passes the wrong service gets nothing.
class ServiceHandle : public QObject {
  Q_OBJECT

public:
  template <class Service>
  static ServiceHandle* wrap(std::shared_ptr<Service> service, QObject* parent = nullptr) {
    return new ServiceHandle(std::static_pointer_cast<void>(std::move(service)), typeid(Service), parent);
  }

  template <class Service>
  std::shared_ptr<Service> get() const {
    if (type_ != std::type_index(typeid(Service))) return nullptr;
    return std::static_pointer_cast<Service>(service_);
  }

private:
  ServiceHandle(std::shared_ptr<void> service, std::type_index type, QObject* parent)
      : QObject(parent), service_(std::move(service)), type_(type) {}

  std::shared_ptr<void> service_;
  std::type_index type_;
};

} // namespace halcyra::app
