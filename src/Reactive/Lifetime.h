#pragma once

#include <memory>
#include <utility>

/// Lets queued work find out whether its owner still exists. The owner holds one as a member; a
/// callback wrapped by `guard` does nothing once the owner is gone.
class Lifetime {
public:
    Lifetime() : m_token(std::make_shared<Token>()) {}
    Lifetime(const Lifetime&) = delete;
    Lifetime& operator=(const Lifetime&) = delete;

    template <typename Callback>
    auto guard(Callback callback) const {
        return [token = std::weak_ptr<Token>(m_token),
                callback = std::move(callback)](auto&&... arguments) {
            if (!token.expired()) callback(std::forward<decltype(arguments)>(arguments)...);
        };
    }

private:
    struct Token {};
    std::shared_ptr<Token> m_token;
};
