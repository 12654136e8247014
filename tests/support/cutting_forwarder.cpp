#include "cutting_forwarder.h"

#include <array>
#include <stdexcept>
#include <utility>

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

sockaddr_in local(unsigned short port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
    address.sin_port = ::htons(port);
    return address;
}

int new_socket() {
    return ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

/// Waits a moment for something to read.
bool is_readable(int socket) {
    pollfd waiting{socket, POLLIN, 0};
    return ::poll(&waiting, 1, 20) == 1;
}

/// What there is to read; empty when the other side is gone.
std::string receive(int socket) {
    std::array<char, 16384> buffer;
    ssize_t const count = ::recv(socket, buffer.data(), buffer.size(), 0);
    return {buffer.data(), count > 0 ? static_cast<std::size_t>(count) : 0};
}

void send_all(int socket, std::string const& bytes) {
    for (std::size_t sent = 0; sent < bytes.size();) {
        ssize_t const count =
            ::send(socket, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count <= 0)
            return;
        sent += static_cast<std::size_t>(count);
    }
}

} // namespace

CUTTING_FORWARDER::CUTTING_FORWARDER(unsigned short port) : m_server_port(port) {
    m_listener = new_socket();
    sockaddr_in address = local(0);
    socklen_t size = sizeof address;
    if (::bind(m_listener, reinterpret_cast<sockaddr*>(&address), size) != 0
        || ::listen(m_listener, 16) != 0
        || ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size) != 0)
        throw std::runtime_error("the forwarder has no port");
    m_port = ::ntohs(address.sin_port);
    m_thread = std::thread([this] { accept_clients(); });
}

CUTTING_FORWARDER::~CUTTING_FORWARDER() {
    m_ends = true;
    m_thread.join();
    for (std::thread& client : m_clients)
        client.join();
    ::close(m_listener);
}

void CUTTING_FORWARDER::cut(CUT cut, std::string words, int connections) {
    std::lock_guard const lock(m_mutex);
    m_orders.push_back({cut, std::move(words), connections});
}

void CUTTING_FORWARDER::cut_no_more() {
    std::lock_guard const lock(m_mutex);
    m_orders.clear();
}

int CUTTING_FORWARDER::cuts_left() {
    std::lock_guard const lock(m_mutex);
    int connections = 0;
    for (ORDER const& order : m_orders)
        connections += order.connections;
    return connections;
}

bool CUTTING_FORWARDER::is_cut_by(std::string const& bytes, CUT& cut) {
    std::lock_guard const lock(m_mutex);
    if (m_orders.empty() || bytes.find(m_orders.front().words) == std::string::npos)
        return false;
    cut = m_orders.front().cut;
    if (--m_orders.front().connections == 0)
        m_orders.pop_front();
    return true;
}

void CUTTING_FORWARDER::accept_clients() {
    while (!m_ends) {
        if (!is_readable(m_listener))
            continue;
        int const client = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (client >= 0 && m_refuses)
            ::close(client);
        else if (client >= 0)
            m_clients.emplace_back([this, client] { forward(client); });
    }
}

void CUTTING_FORWARDER::forward(int client) {
    int const server = new_socket();
    sockaddr_in const address = local(m_server_port);
    bool is_open =
        ::connect(server, reinterpret_cast<sockaddr const*>(&address), sizeof address) == 0;
    while (is_open && !m_ends) {
        std::array<pollfd, 2> waiting{{{client, POLLIN, 0}, {server, POLLIN, 0}}};
        ::poll(waiting.data(), waiting.size(), 20);
        if (waiting[0].revents != 0) {
            std::string const bytes = receive(client);
            is_open = !bytes.empty();
            CUT cut = BEFORE;
            bool const is_cut = is_cut_by(bytes, cut);
            if (is_cut && m_refuses_behind_cut)
                m_refuses = true;
            if (!is_cut || cut != BEFORE)
                send_all(server, bytes);
            if (is_cut && cut == BEHIND)
                receive(server);
            is_open = is_open && !is_cut;
        }
        if (is_open && waiting[1].revents != 0) {
            std::string const bytes = receive(server);
            is_open = !bytes.empty();
            send_all(client, bytes);
        }
    }
    ::close(server);
    ::close(client);
}
