// A memory server written with the official SDK: what it knows is in two environment variables.
import {McpServer} from '@modelcontextprotocol/sdk/server/mcp.js';
import {StdioServerTransport} from '@modelcontextprotocol/sdk/server/stdio.js';
import {z} from 'zod';

const place = {
  cwd: z.string().optional(),
  session_id: z.string().optional(),
  transcript_path: z.string().optional(),
};
const server = new McpServer({name: 'sdk-server', version: '1'});

server.registerTool(
  'rules_get',
  {
    inputSchema: {
      ...place,
      card: z.boolean().optional(),
      card_ceiling: z.number().int().optional(),
      card_head_ceiling: z.number().int().optional(),
    },
  },
  async ({cwd}) => ({
    content: [{type: 'text', text: `<user-rules>\n- Rules for ${cwd}.\nIndex: one card\n</user-rules>`}],
    _meta: {
      'quillstead/replyKind': 'rules',
      'quillstead/rulesLane': 'card',
      'quillstead/card': 'whole',
      'quillstead/indexSpan': 'Index: one card'.length,
    },
  }),
);

server.registerTool(
  'memory_get_relevant',
  {inputSchema: {...place, prompt: z.string()}},
  async ({prompt}) => {
    const card = `You asked: ${prompt}`;
    return {
      content: [
        {type: 'text', text: `<quillstead-memory>\nOne card\n\n${card}\n</quillstead-memory>`},
      ],
      _meta: {
        'quillstead/replyKind': 'cards',
        'quillstead/cardCount': 1,
        'quillstead/cardSpans': [Buffer.byteLength(card)],
      },
    };
  },
);

await server.connect(new StdioServerTransport());
