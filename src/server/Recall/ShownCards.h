#pragma once

#include "server/Index/Index.h"
#include "server/Recall/Recall.h"
#include "server/Session/SessionMemory.h"

#include <vector>

/// Leaves out cards that a session has seen already.
namespace quillstead::server::ShownCards {

/// Removes from `places` the cards that the session was shown with their current text.
void remove(std::vector<CardPlace>& places, const SessionMemory& session, const Scope& scope);

/// Records the cards of `block` that certainly reach the agent, and saves the session.
void note(const Recall::Block& block, SessionMemory& session, const Scope& scope);

}  // namespace quillstead::server::ShownCards
