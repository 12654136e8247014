#ifndef CUTTING_FORWARDER_H
#define CUTTING_FORWARDER_H

/// @file
/// Stands between a client and a server of this machine, and cuts connections at a chosen
/// statement.

#include <atomic>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

class CUTTING_FORWARDER {
public:
    /// What becomes of a connection over which the client says the words.
    enum CUT {
        BEFORE, ///< the server never hears them
        BEHIND, ///< the server hears and answers them, and the client never hears the answer
        AT_ONCE ///< the server hears them, and both sides are cut off at the same time
    };

    /// @param port the server's
    explicit CUTTING_FORWARDER(unsigned short port);
    ~CUTTING_FORWARDER();
    CUTTING_FORWARDER(CUTTING_FORWARDER const&) = delete;
    CUTTING_FORWARDER& operator=(CUTTING_FORWARDER const&) = delete;

    /// Where clients connect.
    unsigned short port() const { return m_port; }

    /// Cuts the next connections, one after the other, over which the words are said. An order
    /// waits until those before it are done.
    void cut(CUT cut, std::string words, int connections = 1);
    /// Forgets the orders that are left.
    void cut_no_more();
    /// How many connections are still to be cut.
    int cuts_left();
    /// Refuses all connections from the next cut on.
    void refuse_behind_cut() { m_refuses_behind_cut = true; }

private:
    void accept_clients();
    void forward(int client);
    /// Takes the first order to cut, when bytes of a client hold its words.
    bool is_cut_by(std::string const& bytes, CUT& cut);

    unsigned short const m_server_port;
    unsigned short m_port = 0;
    int m_listener = -1;
    std::atomic<bool> m_ends{false};
    std::atomic<bool> m_refuses_behind_cut{false};
    std::atomic<bool> m_refuses{false};
    struct ORDER {
        CUT cut;
        std::string words;
        int connections; ///< still to be cut, one at least
    };
    std::mutex m_mutex; ///< of the orders
    std::deque<ORDER> m_orders;
    std::thread m_thread; ///< accepts; it alone adds to m_clients
    std::vector<std::thread> m_clients;
};

#endif
