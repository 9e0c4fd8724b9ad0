#pragma once

#include "server/Index/Index.h"
#include "server/Recall/Recall.h"
#include "server/Session/SessionMemory.h"

#include <vector>

/// Keeps cards from a session that has them already.
namespace quillstead::server::ShownCards {

/// Takes out of `places` the cards that the session was shown with the text that they have now.
void remove(std::vector<CardPlace>& places, const SessionMemory& session, const Scope& scope);

/// Notes the cards of `block`, as far as they surely reach the agent, and keeps the session.
void note(const Recall::Block& block, SessionMemory& session, const Scope& scope);

}  // namespace quillstead::server::ShownCards
