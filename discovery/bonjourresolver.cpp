#include "discovery/bonjourresolver.h"

#include <QString>

#include <algorithm>

void BonjourResolver::AddService(std::string name, std::string type, std::string domain, unsigned interface_index,
                                 std::string host, const SocketAddress& address,
                                 const std::map<std::string, std::string>& txt)
{
    _changed = true;
    const auto same_name = [&](const std::shared_ptr<HostInfo>& info) { return info->name == name; };
    const auto found = std::find_if(_hosts.begin(), _hosts.end(), same_name);
    if (found != _hosts.end()) {
        (*found)->addresses.insert(address);
        return;
    }
    _hosts.push_back(std::make_shared<HostInfo>(
        HostInfo{std::move(name), std::move(type), std::move(domain), interface_index, std::move(host), {address}, txt}));
}

void BonjourResolver::RemoveService(std::string name, std::string, std::string)
{
    _changed = true;
    const auto found = std::find_if(_hosts.begin(), _hosts.end(),
                                    [&](const std::shared_ptr<HostInfo>& info) { return info->name == name; });
    if (found != _hosts.end())
        _hosts.erase(found);
}

std::shared_ptr<BonjourResolver::HostInfo> BonjourResolver::Lookup(const std::string& name) const
{
    const QString wanted = QString::fromStdString(name);
    for (const auto& info : _hosts)
        if (QString::fromStdString(info->name).compare(wanted, Qt::CaseInsensitive) == 0)
            return info;
    return nullptr;
}
